#!/usr/bin/env bash
# platform_check_test.sh PROGRAM IMAGE FONT PLATFORM: the desktop stand-in keeps what the headers in
# PLATFORM promise, and uti-platform-check tries every function that they declare.
# platform_check_test.sh PROGRAM IMAGE FONT: a PROGRAM that carries platform_broken.c is told all that
# it breaks, and nothing else.
# FONT is - where there is no toolkit. UTI_RUN, where set, runs a program of another machine.
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/files"
touch "$work/port"
export UTI_QUIET=1 UTI_COM1=$work/port UTI_PRINTER=$work/printer
status=0
${UTI_RUN:-} "$1" --folder "$work/files" --port 1 --printer --image "$2" --font "$3" >"$work/out" || status=$?
[ -z "$(ls "$work/files")" ] || { ls "$work/files" && echo "left behind" && exit 1; }

if [ $# -eq 3 ]; then
  cat >"$work/expected" <<'END'
broken     clock        Wait waits: the milliseconds of a wait of 300: expected 290 to 2500, came SOME
broken     converters   BufferToDouble reads 8 little-endian bytes, to the bit: BufferToDouble: expected 1.5, came 5.3023991505199126e-315
broken     environment  System_GetEnv copies a value, cut to the buffer: System_GetEnv(name, clearRoom(), size, 0): expected 0, came 1
broken     files        FILE_MODE_CREATE cuts an existing file to nothing: File_GetLength(file): expected 0, came 5
broken     files        File_IsValid gives 1 for a file, 0 for none and for a folder: File_IsValid(path): expected 1, came -1
broken     files        File_Read stops at the end of the file, and gives 0 there and behind: File_Read(file, bytes, 64): expected 0, came -1
broken     ports        a port opens, sends, receives nothing without waiting, and closes: ComPort_Write(line, text, sizeof text - 1): expected 20, came 0
broken     texts        Int64ToStr writes signed decimal, cut to the buffer: Int64ToStr: expected "-123", came "-1234567"
broken     toolkit      igMenuBox_GetSelected gives the first chosen item from 1, negative for none: igMenuBox_GetSelected(menu): expected 1, came 0
broken     toolkit      igWidget_SetFont takes its handle and refuses others: it ends the program by signal 11, Segmentation fault
END
  grep '^broken' "$work/out" | sed '/Wait waits/s/[0-9]*$/SOME/' | LC_ALL=C sort | diff "$work/expected" -
  [ $status -eq 1 ]
  exit
fi

echo "not tried  clock        GetTicks wraps around at 2^32" >"$work/expected"
[ "$3" != - ] || sed -i '/: no display, /d' "$work/out"
grep -v '^kept' "$work/out" | sed -e '/ kept, 0 broken, /d' -e 's/2^32: .*/2^32/' | diff "$work/expected" -
[ $status -eq 0 ]
grep -q uti-platform-check "$work/port" && grep -q uti-platform-check "$work/printer"

grep -hoE '^[a-z][A-Za-z0-9_ ]*[ *]+[A-Za-z0-9_]+\(' "$4"/*.h | sed -e 's/($//' -e 's/.*[ *]//' | sort >"$work/declared"
nm "$1" | sed -n 's/^ *[Uw] \([A-Za-z0-9_]*\).*/\1/p' | sort >"$work/tried"
comm -23 "$work/declared" "$work/tried" >"$work/untried"
[ ! -s "$work/untried" ] || { cat "$work/untried" && echo "declared and never tried" && exit 1; }

${UTI_RUN:-} "$1" --only nothing 2>/dev/null || status=$?
[ $status -eq 2 ]
