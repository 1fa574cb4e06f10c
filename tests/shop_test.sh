#!/usr/bin/env bash
# shop_test.sh SHOP UTI SCRIPT GOLDEN: plays the shop's key script from its first screen to its last
# and compares all that comes of it, as text: what the display showed in each dialog and language,
# the receipts, the settings, the log, and which files were written. With UTI_GOLDEN_UPDATE set,
# GOLDEN is written anew.
set -eu
shop=$1 uti=$2 golden=$4
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
built=$(dirname "$shop")
ln -s "$built/shop.res" "$built/utils_rc.res" "$built/images" "$folder"
unset "${!UTI_COM@}" UTI_DISPLAY UTI_IMAGES UTI_TERMINAL_TYPE UTI_WINDOW EXTRES EXT_DEBUG DISPLAY

UTI_SCRIPT=$3 UTI_OUT=$folder UTI_PRINTER=$folder/receipt "$shop" "$folder" 2>"$folder/said" ||
  { cat "$folder/said" && exit 1; }
[ ! -s "$folder/said" ] || { cat "$folder/said" && exit 1; } # the stand-in has nothing to warn of

cd "$folder"
{
  for dump in en-*.txt; do
    echo "== $dump"
    cat "$dump"
  done
  for dump in de-*.txt ru-*.txt; do # how long it is, and what differs from the English one
    echo "== $dump $(wc -l <"$dump")"
    english=en-${dump#??-}
    [ -f "$english" ] || english=/dev/null
    diff --old-line-format= --unchanged-line-format= --new-line-format=%L "$english" "$dump" || :
  done
  echo "== receipts"
  "$(dirname "$3")/receipts" receipt
  echo "== settings"
  cat shop.ini
  echo "== log"
  "$uti" log --lang en shop
  "$uti" log --lang de --code-page de=windows-1252 --level error shop
  echo "== pictures"
  find . -name '*.png' -size +1k | sort
} >seen
[ -z "${UTI_GOLDEN_UPDATE:-}" ] || cp seen "$golden"
diff -u "$golden" seen
