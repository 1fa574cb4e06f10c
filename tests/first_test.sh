#!/usr/bin/env bash
# first_test.sh PROGRAM RESOURCES: the first example prints its texts in both languages and writes
# its trace log in the wording of its resources. UTI_RUN, where set, runs a program of another machine;
# its C library is then without the code pages that printing needs.
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$2" "$work"
${UTI_RUN:-} "$1" "$work" >"$work/printed"
iconv -f windows-1251 -t utf-8 "$work/first.log" >"$work/log"

status=0
expect() {
  grep -qF -- "$2" "$work/$1" || { echo "not in what it ${1/log/logged}: $2"; status=1; }
}
if [ -z "${UTI_RUN:-}" ]; then
  expect printed '  Hello from first.res!'
  expect printed '  Привет из first.res!'
fi
expect printed 'Is first.res of version 1? 0 Of version 2? -3054'
expect log "[first] grade 'A', byte 200, online true, short -300, word 400, long -50000, dword 60000"
expect log '[first] остаток -1234567890123, счётчик 9876543210, курс 92.500000'
expect log 'examples/first/first.c  Line: '
exit $status
