#!/usr/bin/env bash
# Configures and builds the full build into build/ (binaries in build/bin,
# libraries in build/lib). TAMERISK_JOBS sets the number of parallel jobs
# (default: one per processor).
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build --parallel "${TAMERISK_JOBS:-$(nproc)}"
