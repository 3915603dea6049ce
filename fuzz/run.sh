#!/usr/bin/env bash
# Builds the fuzz targets with clang (AddressSanitizer and UBSan included)
# into build-fuzz/ and runs each for the given number of seconds, starting
# from its seed corpus. New inputs go to build-fuzz/corpus/<target>/, so the
# committed seeds stay as they are; crashes are saved in build-fuzz/.
#
#   fuzz/run.sh SECONDS [TARGET...]     (default: every *_fuzz target)
set -euo pipefail
cd "$(dirname "$0")/.."

if [[ $# -lt 1 || ! $1 =~ ^[0-9]+$ ]]; then
  echo "usage: fuzz/run.sh SECONDS [TARGET...]" >&2
  exit 2
fi
seconds=$1
shift
targets=("$@")
if ((${#targets[@]} == 0)); then
  for src in fuzz/*_fuzz.cpp; do
    targets+=("$(basename "$src" .cpp)")
  done
fi

# Every library is built with coverage instrumentation, so that the fuzzer
# sees the branches of the code under test, not only those of the target.
cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS=-fsanitize=fuzzer-no-link -DTAMERISK_WITH_QT=OFF -DTAMERISK_BENCH=OFF \
  -DBUILD_TESTING=OFF -DTAMERISK_SANITIZE=ON -DTAMERISK_FUZZ=ON >/dev/null
cmake --build build-fuzz --target "${targets[@]}"

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
for target in "${targets[@]}"; do
  work=build-fuzz/corpus/$target
  mkdir -p "$work"
  seeds=()
  if [[ -d fuzz/corpus/$target ]]; then
    seeds=("fuzz/corpus/$target")
  fi
  echo "== $target for ${seconds}s"
  (cd build-fuzz && "bin/$target" -max_total_time="$seconds" -max_len=4096 \
    -print_final_stats=1 "../$work" "${seeds[@]/#/../}")
done
