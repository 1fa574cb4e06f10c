#!/usr/bin/env bash
# parking_test.sh PARKING UTI SCRIPT GOLDEN: plays the parking meter's key script and compares, as
# text, what the display showed in each language, the settings, both logs and the files written.
# With UTI_GOLDEN_UPDATE set, GOLDEN is written anew.
set -eu
parking=$1 uti=$2 golden=$4
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
built=$(dirname "$parking")
ln -s "$built"/{parking.res,Monitor.res,utils_rc.res,images} "$folder"
unset "${!UTI_COM@}" UTI_DISPLAY UTI_IMAGES UTI_TERMINAL_TYPE UTI_WINDOW EXTRES EXT_DEBUG DISPLAY

UTI_SCRIPT=$3 UTI_OUT=$folder "$parking" "$folder"

cd "$folder"
{
  for dump in *.txt; do
    echo "== $dump"
    cat "$dump"
  done
  echo "== settings"
  cat parking.ini
  echo "== logs"
  "$uti" log --lang en parking
  "$uti" log --lang en parking.mlog
  echo "== pictures"
  find . -name '*.png' -size +1k | sort
} >seen
[ -z "${UTI_GOLDEN_UPDATE:-}" ] || cp seen "$golden"
diff -u "$golden" seen
