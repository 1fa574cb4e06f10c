#!/usr/bin/env bash
# cookbook_test.sh SOURCE BUILD FLAG...: builds the program of docs/cookbook.md of its own files with
# the compiler's FLAGs, plays each recipe under its key script and looks at what comes of it. The files
# stay in UTI_KEEP, where that names a new folder.
set -eu
source=$1 build=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset "${!UTI_COM@}" UTI_DISPLAY UTI_IMAGES UTI_TERMINAL_TYPE UTI_WINDOW UTI_QUIET EXTRES EXT_DEBUG DISPLAY
keep=${UTI_KEEP:-$work/till}

cmake --install "$build" --prefix "$work/uti" >/dev/null
PATH=$work/uti/bin:$PATH
"$source/tests/page_files.sh" "$source/docs/cookbook.md" "$keep"
cd "$keep"
if ! { cmake -B build -DCMAKE_PREFIX_PATH="$work/uti" -DCMAKE_C_FLAGS="$*" &&
  cmake --build build; } >log 2>&1; then
  cat log
  exit 1
fi
mkdir -p build/images
cp "$source"/examples/shop/images/{tea,coffee}.png build/images
cd build

status=0
is() { # what is looked at, what was expected, what came
  [ "$2" = "$3" ] || { printf 'FAILED: %s: expected\n%s\nbut there is\n%s\n' "$1" "$2" "$3"; status=1; }
}
# Plays recipes under a script, what `first` says being done before. Nothing else may be said, as of
# texts that do not fit.
first=
plays() { # what is printed, script, recipe...
  local expected=$1 script=$2
  shift 2
  [ -f "$script" ] || script=/dev/null
  is "$*" "$expected" "$(eval "$first"
    UTI_SCRIPT=$script UTI_PRINTER=printed ./till "$@" 2>&1 || echo "status $?")"
}

expected='balance: Balance: 12.50, 0
amount: 1250 cents, 0
date: 2028-02-29, 0
address: 10.20.30.40, 0
pin: 0
confirm: -3202
picture: 1
list: 2
progress: -3202
sign: 0
settings: 5, 192.168.0.1, 0
log: 0
language: 0'
recipes=
while IFS= read -r line; do
  recipe=${line%%:*}
  recipes+=" $recipe"
  plays "$line" "../$recipe.script" "$recipe"
done <<<"$expected"
is 'the receipt' $'Total                       2.10\nSigned on the display' "$(cat printed)"
[ -s signature.png ] || is signature.png 'a picture' 'none'
is 'the log' 'SUPPORT 2026-01-01 12:00:00 [till] Sale 7 of Tea at 12:00:00: 210 cents' "$(bash -eu ../log.sh)"
grep -qF "$(bash -eu ../log.sh)" "$source/docs/cookbook.md" || is 'the log' 'the line of the page' 'another'

# All of them in one run, the modem plugged in at its beginning: who keeps texts would have none left.
for recipe in $recipes; do
  [ ! -f "../$recipe.script" ] || cat "../$recipe.script"
done >all.script
plays "$expected" all.script $recipes

# With the other words in place; the stand-in tells which ones they lack.
(cd .. && . ./override.sh)
first='export EXTRES=1 UTI_QUIET=1' plays 'override: 1 0, 0' ../override.script override

# No byte can be written any more, to no file; then there is room again.
cp till.ini before
first='trap "" XFSZ; ulimit -f 0; export UTI_QUIET=1'
plays 'till: neither volume nor the log can be written
full: -3500' - full
is 'the settings on a full disk' "$(cat before)" "$(cat till.ini)"
first=
plays 'full: 0' - full
is 'the settings afterwards' $'[TERMINAL]\nVOLUME=9' "$(tr -d '\r' <till.ini)"

# Who does keep texts is told so, once.
sed -i '/^ *Resource_Release(/d' ../*.c ../*.h
cmake --build . >>../log 2>&1
is 'texts that are kept' 'uti: release strings: 20 short texts of `till` are out, so the next one is empty' \
  "$(UTI_SCRIPT=all.script UTI_PRINTER=printed ./till $recipes 2>&1 >said | grep 'short texts')"
exit $status
