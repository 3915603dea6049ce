#!/usr/bin/env bash
# The binary interface of libtamerisk.so against the committed baseline
# abi/libtamerisk.abi (an abixml written by abidw from the library's debug
# information, restricted to the exported functions and the types of
# include/tamerisk/ they reach).
#
#   scripts/abi.sh check [BUILD_DIR]     compare build/lib's library with the
#                                        baseline; exit 1 on any difference
#   scripts/abi.sh update [BUILD_DIR]    write the baseline again from it
#   scripts/abi.sh compare OLD NEW       compare two abixml files
#
# A difference is any change abidiff sees: a function added, removed or
# changed, a public type whose size, members or layout changed. Change the
# baseline only together with the version in include/tamerisk/version.h (a
# new minor version for additions, a new major one for anything else).
set -euo pipefail
cd "$(dirname "$0")/.."

baseline=abi/libtamerisk.abi

die() {
  echo "abi.sh: $*" >&2
  exit 2
}

dump() {
  local library=$1 out=$2
  [[ -f $library ]] || die "$library does not exist; build it first"
  readelf -S "$library" | grep -q '\.debug_info' ||
    die "$library has no debug information; build with RelWithDebInfo or Debug"
  abidw --exported-interfaces-only --headers-dir include/tamerisk --drop-private-types \
    --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed \
    "$library" --out-file "$out"
  # Where this checkout lies is no part of the interface.
  sed -i "s|path='$PWD/|path='|" "$out"
}

compare() {
  local status=0
  abidiff "$1" "$2" || status=$?
  if ((status != 0)); then
    echo "abi.sh: the interface of libtamerisk.so differs from $1 (abidiff status $status)" >&2
    return 1
  fi
}

library_of() {
  local build=${1:-build}
  # The newest: a build directory keeps the files of earlier versions.
  ls -v "$build"/lib/libtamerisk.so.*.*.* 2>/dev/null | tail -n 1 || true
}

command -v abidw >/dev/null || die "abidw is missing (Debian package abigail-tools)"
case ${1:-} in
  check)
    current=$(mktemp)
    trap 'rm -f "$current"' EXIT
    dump "$(library_of "${2:-}")" "$current"
    compare "$baseline" "$current"
    echo "abi.sh: libtamerisk.so matches $baseline"
    ;;
  update)
    dump "$(library_of "${2:-}")" "$baseline"
    echo "abi.sh: wrote $baseline"
    ;;
  compare)
    (($# == 3)) || die "usage: scripts/abi.sh compare OLD NEW"
    compare "$2" "$3"
    ;;
  *)
    die "usage: scripts/abi.sh check|update [BUILD_DIR] | compare OLD NEW"
    ;;
esac
