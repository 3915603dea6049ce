#!/usr/bin/env bash
# Installs what is missing, builds, and starts the demo host with the
# material editor open. Arguments go to the host (for example
# --open material.qva).
#
# Without a display ($DISPLAY and $WAYLAND_DISPLAY empty) the host runs
# offscreen, saves a picture of the editor and says where it is.
set -euo pipefail
cd "$(dirname "$0")"

./scripts/install-deps.sh
# Only what runs here: the library, the demo host and the two tools.
# ./test.sh builds the rest (tests, benchmarks).
./scripts/build.sh tamerisk tamerisk-host tamerisk-render tamerisk-qva

if [[ -z "${DISPLAY:-}" && -z "${WAYLAND_DISPLAY:-}" ]]; then
  picture="$PWD/build/tamerisk-editor.png"
  QT_QPA_PLATFORM=offscreen build/bin/tamerisk-host --screenshot "$picture" "$@" >/dev/null
  echo "No display: the editor was drawn offscreen into $picture"
else
  exec build/bin/tamerisk-host "$@"
fi
