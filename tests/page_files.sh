#!/usr/bin/env bash
# page_files.sh PAGE FOLDER: writes the files that a page of the documentation shows. A file is a fenced
# block behind a line that holds its name alone; the block behind `<!-- NAME -->` is one too.
set -eu
mkdir -p "$2"
awk -v folder="$2" '
  /^`[a-zA-Z._\/]+`:$/ { name = substr($0, 2, length($0) - 3); sub(/.*\//, "", name); next }
  /^<!-- [a-zA-Z._]+ -->$/ { name = $2; next }
  /^```/ { inside = !inside; if (!inside) name = ""; next }
  inside && name != "" { print > (folder "/" name) }' "$1"
