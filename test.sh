#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test:
#   1. the full build in build/ with every test (Qt tests offscreen);
#   2. the library's binary interface against the baseline abi/libtamerisk.abi;
#   3. under AddressSanitizer and UndefinedBehaviorSanitizer (GCC, in
#      build-asan/): the engine, file-format and preview tests with leak
#      checking, the fuzz targets' seed corpora, then the dialog and host
#      tests, a host's life with the library (dlopen, Open, Close, dlclose,
#      a late Close, no application, another thread) and the seeded monkey;
#   4. every test labelled "threads" (the engine's pool, concurrent renders,
#      the large preview's renderer, thumbnails from several threads) in
#      build-tsan/, built with GCC under ThreadSanitizer.
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

echo "== Binary interface (abi/libtamerisk.abi)"
./scripts/abi.sh check build

echo "== Under AddressSanitizer and UBSan (build-asan/)"
cmake -S . -B build-asan -G Ninja \
  -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=g++ \
  -DTAMERISK_BENCH=OFF -DTAMERISK_SANITIZE=ON -DTAMERISK_FUZZ=ON >/dev/null
# Set before the build, which runs the test programs to list their tests.
export ASAN_OPTIONS=detect_leaks=0:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
fuzzers=()
for source in fuzz/*_fuzz.cpp; do
  fuzzers+=("$(basename "$source" .cpp)")
done
cmake --build build-asan --parallel "$jobs" \
  --target test_engine test_material test_preview "${fuzzers[@]}" \
           test_dialogs test_host test_thumbnails unload_check monkey
# Our own code frees what it takes, and hands only terminated strings to the
# string functions: both count there. Qt keeps caches (fonts, plugins, the
# clipboard) to the end of the process on purpose, and they are not ours to
# free; the X keyboard library strndup()s names that are not terminated. For
# the Qt programs what matters is memory used after it was freed or unmapped.
(cd build-asan && ASAN_OPTIONS=$ASAN_OPTIONS:detect_leaks=1:strict_string_checks=1 \
  ctest --output-on-failure -j"$jobs" -L core)
(cd build-asan && ctest --output-on-failure -j"$jobs" -L 'qt|threads' -LE core)

echo "== Threaded tests under ThreadSanitizer (build-tsan/)"
cmake -S . -B build-tsan -G Ninja \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=g++ \
  -DTAMERISK_BENCH=OFF -DTAMERISK_TSAN=ON >/dev/null
export TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 suppressions=$PWD/tests/tsan.supp"
cmake --build build-tsan --parallel "$jobs" \
  --target test_preview test_dialogs test_thumbnails unload_check
(cd build-tsan && ctest --output-on-failure -j"$jobs" -L threads)

echo "== All tests passed"
