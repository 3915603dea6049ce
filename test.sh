#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test:
#   1. the full build in build/ with every test (Qt tests offscreen);
#   2. the library's binary interface against the baseline abi/libtamerisk.abi;
#   3. the dialog and host tests, a host's life with the library (dlopen,
#      Open, Close, dlclose, a late Close, no application, another thread)
#      and the seeded monkey in build-sanitize-host/, built with GCC under
#      AddressSanitizer and UBSan;
#   4. every test labelled "threads" (the engine's pool, concurrent renders,
#      the large preview's renderer, thumbnails from several threads) in
#      build-tsan/, built with GCC under ThreadSanitizer;
#   5. the Qt-free engine and file-format tests again in build-sanitize/,
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

echo "== Binary interface (abi/libtamerisk.abi)"
./scripts/abi.sh check build

echo "== Qt tests and a host's life under sanitizers (build-sanitize-host/)"
cmake -S . -B build-sanitize-host -G Ninja \
  -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=g++ \
  -DTAMERISK_BENCH=OFF -DTAMERISK_SANITIZE=ON >/dev/null
# Qt keeps caches (fonts, plugins, the clipboard) to the end of the process
# on purpose, and they are not ours to free: leak checking is off, what
# matters here is memory used after it was freed or unmapped. Set before the
# build, which runs the test programs to list their tests.
export ASAN_OPTIONS=detect_leaks=0:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
cmake --build build-sanitize-host --parallel "$jobs" \
  --target test_dialogs test_host test_thumbnails unload_check monkey
(cd build-sanitize-host && ctest --output-on-failure -j"$jobs" -L 'qt|threads')

echo "== Threaded tests under ThreadSanitizer (build-tsan/)"
cmake -S . -B build-tsan -G Ninja \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=g++ \
  -DTAMERISK_BENCH=OFF -DTAMERISK_TSAN=ON >/dev/null
export TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 suppressions=$PWD/tests/tsan.supp"
cmake --build build-tsan --parallel "$jobs" \
  --target test_preview test_dialogs test_thumbnails unload_check
(cd build-tsan && ctest --output-on-failure -j"$jobs" -L threads)

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
