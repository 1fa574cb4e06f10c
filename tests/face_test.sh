#!/bin/sh
# face_test.sh: what a program that loads libuti.so can see and must not see.
#   face_test.sh SOURCE_DIR LIBRARY SANITIZED CC CXX OBJECT...
# The exported names are those of the header and of Src/uti.exports; nothing runs at load; the C
# library alone is needed, and of the platform nothing but what its headers declare; every public
# header compiles alone as C11, C17 and C++11 to C++23, uti.hpp as C++17 and C++20.
set -u
source=$1 library=$2 sanitized=$3 cc=$4 cxx=$5
shift 5
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

same() { # what, file, file
  if ! diff "$2" "$3" >"$work/diff"; then
    echo "FAILED: $1" && cat "$work/diff" && failed=1
  fi
}

empty() { # what, file
  if [ -s "$2" ]; then
    echo "FAILED: $1" && cat "$2" && failed=1
  fi
}

# Declarations of a header, one a line, comments and preprocessor lines gone.
declarations() {
  sed -e '/^#/d' "$1" | tr '\n' ' ' | sed -e 's#/\*[^*]*\*\+\([^/*][^*]*\*\+\)*/##g' | tr ';' '\n'
}

declarations "$source/include/uti.h" | grep 'UTI_API' |
  sed -e 's/.*UTI_API *//' -e 's/[[(].*//' -e 's/.*[ *]//' | sort >"$work/header"
sort "$source/Src/uti.exports" >"$work/list"
nm -D --defined-only "$library" | sed -e 's/.* //' -e 's/@.*//' | sort >"$work/library"
same "names of uti.h and of uti.exports" "$work/header" "$work/list"
same "names of uti.exports and of the library" "$work/list" "$work/library"

for header in include/uti.h platform/terminal.h platform/toolkit.h; do
  [ -f "$source/$header" ] || continue
  flags="-I$source/include -I$source/platform -Wall -Wextra -Wpedantic -Wconversion -Werror -fsyntax-only"
  for standard in c11 c17; do
    $cc -std=$standard -pedantic $flags -x c "$source/$header" || failed=1
  done
  for standard in c++11 c++14 c++17 c++20 c++2b; do
    $cxx -std=$standard $flags -x c++ "$source/$header" || failed=1
  done
done
for standard in 17 20; do
  $cxx -std=c++$standard $flags -Wshadow -fno-exceptions -fno-rtti -x c++ \
    "$source/include/uti.hpp" || failed=1
done

if [ "$sanitized" = no ]; then
  readelf -SW "$@" | grep -E '\.(init_array|ctors|preinit_array)' >"$work/constructors"
  empty "static constructors" "$work/constructors"

  readelf -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' >"$work/needed"
  echo libc.so.6 >"$work/libc"
  same "libraries needed" "$work/libc" "$work/needed"

  for header in "$source"/platform/*.h; do declarations "$header"; done |
    grep -oE '[A-Za-z_0-9]+ *\(' | tr -d ' (' | sort -u >"$work/platform"
  nm -D --undefined-only "$library" | grep -v GLIBC | grep -v ' w ' | sed 's/.* //' | sort >"$work/undefined"
  comm -13 "$work/platform" "$work/undefined" >"$work/unknown"
  empty "needed, but neither the platform's nor the C library's" "$work/unknown"
fi
exit $failed
