#!/usr/bin/env bash
# Installs, from Debian's packages, whatever the build and the tests need and
# the machine lacks. Does nothing when everything is there.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-base-dev-tools libgl-dev
  qt6-tools-dev qt6-l10n-tools qt6-translations-l10n
  zlib1g-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  clang libclang-rt-14-dev
  abigail-tools
  fonts-ipafont-gothic fonts-dejavu-core
  # the desktop side: a thumbnail service on a private session bus, the
  # MIME database, the desktop entry checker, gio to ask for a file's type
  tumbler dbus shared-mime-info desktop-file-utils libglib2.0-bin
  # a real X display under a window manager, for the editor's placement
  xvfb xauth openbox x11-utils x11-xserver-utils
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if ((${#missing[@]} == 0)); then
  exit 0
fi

echo "Installing: ${missing[*]}"
sudo_cmd=()
if [[ $(id -u) -ne 0 ]]; then
  sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
