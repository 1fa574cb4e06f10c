#!/usr/bin/env bash
# guide_test.sh SOURCE BUILD: does what the README's guide says, in an empty folder, and looks at what it
# promises. What it shows of the files must be in them. The same application in C++ passes the same test.
set -eu
source=$1
build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/home/uti" >/dev/null
"$source/tests/page_files.sh" "$source/README.md" "$work/shown"
cd "$work"
unset "${!UTI_@}" CMAKE_PREFIX_PATH
HOME=$work/home bash -eu shown/try >log 2>&1 && grep -q '100% tests passed' log || { cat log; exit 1; }
for file in hello.toml hello.c test/hello.script; do
  ! grep -vxFf "hello/$file" "shown/${file##*/}" || { echo "the README shows this of $file"; exit 1; }
done

"$source/tests/page_files.sh" "$source/docs/cpp.md" "$work/hello"
cd hello
sed -i 's/(hello C)/(hello CXX)\nset(CMAKE_CXX_STANDARD 20)/; s/hello\.c)/hello.cpp)/; s/strings\.h /strings.hpp /' CMakeLists.txt
PATH=$work/home/uti/bin:$PATH
{ cmake -B build.cpp && cmake --build build.cpp && ctest --test-dir build.cpp --output-on-failure; } >log 2>&1 ||
  { cat log; exit 1; }
