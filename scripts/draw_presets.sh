#!/usr/bin/env bash
# Draws the picture of every preset with its name that the README shows,
# docs/images/presets.png, from the presets of a build.
#
#   scripts/draw_presets.sh [BUILD_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
cmake --build "$build" --target preset-sheet tamerisk_presets
"$build/bin/preset-sheet" --size 128 --columns 6 docs/images/presets.png "$build"/share/tamerisk/materials/*.qva
echo "docs/images/presets.png"
