#!/usr/bin/env bash
# The ABI check catches what it is there for: the baseline with a member
# added to the material record, or with a function gone, must not pass as
# the same interface, and the baseline itself must.
set -euo pipefail
cd "$(dirname "$0")/../.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

baseline=abi/libtamerisk.abi
scripts/abi.sh compare "$baseline" "$baseline" >/dev/null

# A float appended to FZAttributeEx: 32 bits more, one member more.
export FLOAT_ID=$(sed -n "s/.*<type-decl name='float' size-in-bits='32' id='\([^']*\)'.*/\1/p" "$baseline")
perl -0pe '
  s{<class-decl name=.FZAttributeEx. size-in-bits=.(\d+).(.*?)(\n\s*</class-decl>)}{
    "<class-decl name=\x27FZAttributeEx\x27 size-in-bits=\x27" . ($1 + 32) . "\x27$2"
    . "\n      <data-member access=\x27public\x27 layout-offset-in-bits=\x27$1\x27>"
    . "<var-decl name=\x27extra\x27 type-id=\x27$ENV{FLOAT_ID}\x27 visibility=\x27default\x27/>"
    . "</data-member>$3"}se' "$baseline" >"$work/added-member.abi"
grep -q "name='extra'" "$work/added-member.abi"
if scripts/abi.sh compare "$baseline" "$work/added-member.abi" >"$work/out" 2>&1; then
  echo "an added member passed the ABI check" >&2
  exit 1
fi
grep -q "data member insertion" "$work/out"

# Tamerisk_SetTitle gone from the symbols.
grep -v "elf-symbol name='Tamerisk_SetTitle'" "$baseline" >"$work/removed-symbol.abi"
if scripts/abi.sh compare "$baseline" "$work/removed-symbol.abi" >/dev/null 2>&1; then
  echo "a removed function passed the ABI check" >&2
  exit 1
fi
echo "the ABI check catches an added member and a removed function"
