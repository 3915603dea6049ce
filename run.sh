#!/usr/bin/env bash
# Installs what is missing, builds, and starts the demo host with the editor.
set -euo pipefail
cd "$(dirname "$0")"

./scripts/install-deps.sh
./scripts/build.sh

# Main job, until the editor's demo host arrives: the default material on
# each of the four sample shapes, rendered as the preview shows it.
mkdir -p out
for shape in 1 2 3 4; do
  build/bin/tamerisk-render --shape "$shape" --output "out/preview-shape$shape.png"
done
echo "The default material on the four sample shapes, as the preview shows it:"
printf '  %s\n' "$PWD"/out/preview-shape{1,2,3,4}.png
