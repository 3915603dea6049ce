#!/usr/bin/env bash
# Installs what is missing, builds, and starts the demo host with the editor.
set -euo pipefail
cd "$(dirname "$0")"

./scripts/install-deps.sh
./scripts/build.sh

echo "The editor arrives with the material dialog; until then run.sh only builds."
