#!/usr/bin/env bash
# hpp_wrong_test.sh CXX SNIPPETS FLAG...: every statement of SNIPPETS fails to compile with its text,
# and those that are right compile, in either standard, without exceptions and run-time type
# information. Wanted texts are parted by "~": compilers say it differently.
set -eu
cxx=$1 snippets=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
printf '#include "hpp_strings.hpp"\nusing namespace uti;\n' >"$work/face.hpp"

program() { # statements
  printf 'int main() {\nint number = 1;\n%s\n}\n' "$1"
}

failed=0
program "$(sed -n 's/^- |//p' "$snippets")" >"$work/right.cpp"
for standard in 17 20; do
  "$cxx" "$@" -std=c++$standard -fno-exceptions -fno-rtti -Wall -Wextra -Wpedantic -Wconversion \
    -Wshadow -Werror -fsyntax-only -include "$work/face.hpp" "$work/right.cpp" || failed=1
done
"$cxx" "$@" -std=c++20 -x c++-header "$work/face.hpp" -o "$work/face.hpp.gch" # spares time

number=0
while IFS='|' read -r wanted statement; do
  case $wanted in '#'* | '- ' | '') continue ;; esac
  number=$((number + 1))
  program "$statement" >"$work/wrong.cpp"
  if "$cxx" "$@" -std=c++20 -fsyntax-only -include "$work/face.hpp" "$work/wrong.cpp" \
    >"$work/said" 2>&1; then
    echo "compiles:$statement" && failed=1
  elif ! grep -qFf <(sed 's/ *~ */\n/g; s/ *$//' <<<"$wanted") "$work/said"; then
    echo "fails without \"$wanted\":$statement" && cat "$work/said" && failed=1
  fi
done <"$snippets"
echo "$number mistakes"
[ "$number" -gt 20 ] && exit $failed
