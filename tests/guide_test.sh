#!/usr/bin/env bash
# guide_test.sh SOURCE BUILD: does what the README's guide says, with its own files, in an empty
# folder, and looks at what it promises.
set -eu
source=$1
build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/home/uti" >/dev/null
"$source/tests/page_files.sh" "$source/README.md" "$work/hello"
cd "$work/hello"

export HOME=$work/home
printed=$(bash -eu ./try 2>&1 | tee log | tail -1)
[ "$printed" = 0 ] || { cat log; echo "the guide's program printed \"$printed\""; exit 1; }
for picture in name greeting; do
  [ -s "build/$picture.png" ] || { cat log; echo "no $picture.png"; exit 1; }
done
