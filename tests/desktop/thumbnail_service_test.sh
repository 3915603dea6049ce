#!/usr/bin/env bash
# The desktop side of an installed prefix, as a file manager meets it: the
# desktop entry is valid, a material file is known by its name and, without
# the name, by its header, and a real thumbnail service (tumbler, on a
# private session bus that this script starts and stops) draws thumbnails
# of the sizes it is asked for into the user's thumbnail cache. Needs no
# display.
#
#   thumbnail_service_test.sh BUILD_DIR
set -euo pipefail

build=$1
tumblerd=$(ls /usr/lib/*/tumbler-1/tumblerd /usr/lib/tumbler-1/tumblerd 2>/dev/null | head -n 1 || true)
for tool in gio dbus-daemon dbus-send desktop-file-validate update-mime-database; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done
[[ -x $tumblerd ]] || { echo "SKIP: tumbler is not installed"; exit 77; }

work=$(mktemp -d)
bus_pid=
tumbler_pid=
cleanup() {
  [[ -n $tumbler_pid ]] && kill "$tumbler_pid" 2>/dev/null || true
  [[ -n $bus_pid ]] && kill "$bus_pid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }

prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >"$work/install.log" 2>&1 || fail "install: $(cat "$work/install.log")"
export HOME=$work/home XDG_CACHE_HOME=$work/cache XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data
export XDG_DATA_DIRS=$prefix/share:/usr/local/share:/usr/share
mkdir -p "$HOME" "$XDG_CACHE_HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME"

desktop-file-validate "$prefix/share/applications/tamerisk-host.desktop" || fail "the desktop entry is not valid"

# A material, once with its name and once under a name that tells nothing.
files=$work/files
mkdir -p "$files"
printf '{"color": [200, 40, 40], "reflection": 0.3}' | "$prefix/bin/tamerisk-qva" write "$files/material.qva" -
cp "$files/material.qva" "$files/untitled"
content_type() { gio info -a standard::content-type "$1" | sed -n 's/^ *standard::content-type: //p'; }
for f in material.qva untitled; do
  type=$(content_type "$files/$f")
  [[ $type == application/x-tamerisk-material ]] || fail "$f is taken for '$type'"
done

read -r bus_address bus_pid < <(dbus-daemon --session --fork --print-address=1 --print-pid=1 | paste -s -d ' ')
export DBUS_SESSION_BUS_ADDRESS=$bus_address
"$tumblerd" >"$work/tumbler.log" 2>&1 &
tumbler_pid=$!
service=org.freedesktop.thumbnails.Thumbnailer1
owned() {
  dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
    org.freedesktop.DBus.NameHasOwner "string:$service" 2>/dev/null | grep -q 'boolean true'
}
for _ in $(seq 100); do owned && break; sleep 0.1; done
owned || fail "tumbler did not start: $(cat "$work/tumbler.log")"

# The cache names a thumbnail by the MD5 of the file's URI; its PNG header
# holds its width and height at bytes 16 to 23.
width_of() { od -An -tu1 -j16 -N4 "$1" | awk '{ print $1 * 16777216 + $2 * 65536 + $3 * 256 + $4 }'; }
for f in material.qva untitled; do
  uri=file://$files/$f
  hash=$(printf '%s' "$uri" | md5sum | cut -d' ' -f1)
  for flavor in normal:128 large:256; do
    name=${flavor%%:*} size=${flavor##*:}
    dbus-send --session --print-reply --dest=$service /org/freedesktop/thumbnails/Thumbnailer1 \
      $service.Queue "array:string:$uri" "array:string:application/x-tamerisk-material" \
      "string:$name" string:default uint32:0 >/dev/null
    thumbnail=$XDG_CACHE_HOME/thumbnails/$name/$hash.png
    for _ in $(seq 300); do [[ -s $thumbnail ]] && break; sleep 0.1; done
    [[ -s $thumbnail ]] || fail "no $name thumbnail of $f: $(cat "$work/tumbler.log")"
    [[ $(width_of "$thumbnail") == "$size" ]] || fail "the $name thumbnail of $f is not $size pixels wide"
  done
done
echo "thumbnails of 128 and 256 pixels drawn by tumbler"
