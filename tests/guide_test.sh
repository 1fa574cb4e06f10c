#!/usr/bin/env bash
# guide_test.sh SOURCE BUILD: does what the README's guide says, with its own files, in an empty
# folder, and looks at what it promises.
set -eu
source=$1
build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/home/uti" >/dev/null
mkdir "$work/hello"
cd "$work/hello"
# A file is a fenced block behind a line that holds its name alone; the commands are a file too.
awk '
  /^`[a-zA-Z.]+`:$/ { name = substr($0, 2, length($0) - 3); next }
  /^<!-- try -->$/ { name = "try"; next }
  /^```/ { inside = !inside; if (!inside) name = ""; next }
  inside && name != "" { print > name }' "$source/README.md"

export HOME=$work/home
printed=$(bash -eu ./try 2>&1 | tee log | tail -1)
[ "$printed" = 0 ] || { cat log; echo "the guide's program printed \"$printed\""; exit 1; }
for picture in name greeting; do
  [ -s "build/$picture.png" ] || { cat log; echo "no $picture.png"; exit 1; }
done
