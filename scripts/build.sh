#!/usr/bin/env bash
# Configures the full build into build/ (binaries in build/bin, libraries in
# build/lib) and builds the targets named as arguments, or everything
# (library, tools, tests, benchmarks) without arguments. TAMERISK_JOBS sets
# the number of parallel jobs (default: one per processor).
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
targets=()
for target in "$@"; do
  targets+=(--target "$target")
done
cmake --build build --parallel "${TAMERISK_JOBS:-$(nproc)}" "${targets[@]}"
