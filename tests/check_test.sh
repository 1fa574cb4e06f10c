#!/usr/bin/env bash
# check_test.sh UTI SOURCES GOLDEN TABLE: `uti check` of the sources in TABLE, each behind a line with
# `==`, finds what GOLDEN says; nothing in the examples nor in any TOML of the documents. With
# UTI_GOLDEN_UPDATE set, GOLDEN is written anew.
set -eu
uti=$1 sources=$2 golden=$3 table=$4
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
unset UTI_IMAGES EXTRES EXT_DEBUG
failed=0
wrong() {
  echo "$*"
  failed=1
}

cd "$folder"
echo text >text.png
mkdir images
head='module = "m"
[languages]
en = 0
ru = 0
[strings]
YES = { id = 0x1001, en = "Yes", ru = "Да" }
NO = { id = 0x1002, en = "No", ru = "Нет" }
ASK = { id = 0x1003, en = "Is it %s?", ru = "Это точно %s?" }
WIDE = { id = 0x1004, en = "%3d", ru = "%9d" }'
csplit -sz -n 2 -f case "$table" '/^==/' '{*}'
for case in case*; do
  head -1 "$case"
  { echo "$head" && tail -n +2 "$case" | sed '/^\[strings\]/d'; } >m.toml
  status=0
  "$uti" check m.toml 2>&1 || status=$?
  echo "exit $status"
done >seen
printf 'module = "\xcf\xf0\xe8\xe2\xe5\xf2"\n' >cp.toml
printf 'module = "m"\n' | iconv -t UTF-16 >wide.toml
"$uti" check cp.toml >>seen 2>&1 || true
"$uti" check wide.toml >>seen 2>&1 || true
for line in 'check --foramt json m.toml' 'compile m.toml -x' 'chekc m.toml'; do
  "$uti" $line >>seen 2>&1 || echo "exit $?" >>seen
done
"$uti" compile "$sources/tests/fit.toml" -o . --header fit.h
grep -A1 '/\*\*' fit.h >>seen
[ -z "${UTI_GOLDEN_UPDATE:-}" ] || cp seen "$golden"
diff -u "$golden" seen || failed=1

for example in "$sources"/examples/*/*.toml; do
  "$uti" check "$example" || wrong "$example"
done

# A block that names no module goes on with the one before.
for document in "$sources"/README.md "$sources"/docs/*.md; do
  rm -f block*.toml
  awk '/^```toml/ { on = 1; next } /^```/ { on = 0 }
    on { if (/^module/) ++n; if (n) print > ("block" n ".toml") }' "$document"
  for block in block*.toml; do
    [ -e "$block" ] || continue
    for image in $(grep -o '"[a-z_]*\.png"' "$block" | tr -d '"'); do
      cp "$sources/examples/shop/images/up.png" "$image"
      cp "$image" "images/$image"
    done
    "$uti" check "$block" || wrong "$document has this block"
  done
done
exit $failed
