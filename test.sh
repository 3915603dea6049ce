#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test:
#   1. the full build in build/ with every test (Qt tests offscreen);
#   2. the Qt-free engine and file-format tests again in build-sanitize/,
#      built with clang under AddressSanitizer and UndefinedBehaviorSanitizer,
#      with the fuzz targets' seed corpora replayed.
# Exits 0 only when everything passes. TAMERISK_JOBS sets the number of
# parallel build and test jobs (default: one per processor).
set -euo pipefail
cd "$(dirname "$0")"

./scripts/install-deps.sh
export QT_QPA_PLATFORM=offscreen
export TAMERISK_JOBS=${TAMERISK_JOBS:-$(nproc)}
jobs=$TAMERISK_JOBS

echo "== Full build (build/)"
./scripts/build.sh
(cd build && ctest --output-on-failure -j"$jobs")

echo "== Sanitizer build (build-sanitize/)"
cmake -S . -B build-sanitize -G Ninja \
  -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_COMPILER=clang++ \
  -DTAMERISK_WITH_QT=OFF -DTAMERISK_BENCH=OFF \
  -DTAMERISK_SANITIZE=ON -DTAMERISK_FUZZ=ON >/dev/null
cmake --build build-sanitize --parallel "$jobs"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:strict_string_checks=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
(cd build-sanitize && ctest --output-on-failure -j"$jobs")

echo "== All tests passed"
