#!/usr/bin/env bash
# new_test.sh BUILD FLAG...: what `uti new` makes builds with the compiler's FLAGs, without findings, and
# passes its test; what is changed in it is told, by the test and by the build.
set -eu
build=$1
shift
work=$(mktemp -d)
log=$work/log
trap 'rm -rf "$work"' EXIT
unset "${!UTI_@}" DISPLAY CMAKE_PREFIX_PATH
status=0
wrong() { echo "FAILED: $*"; cat "$log"; status=1; }
has() { tr -s ' \n' '  ' <"$log" | grep -qF -- "$1" || wrong "nothing says $1"; }

cmake --install "$build" --prefix "$work/uti" >/dev/null
PATH=$work/uti/bin:$PATH
cd "$work"
for name in 1st much_too_long a-b '' sub/app test utils_rc; do
  ! uti new "$name" >"$log" 2>&1 || wrong "the name $name"
done
uti new Till_2 >"$log"
! uti new Till_2 >"$log" 2>&1 || wrong "a name that is taken"
has 'Till_2 is there already'
cd Till_2
uti check Till_2.toml >"$log" 2>&1 || wrong "it has findings"
! grep -r hello . >"$log" || wrong "the template's name"

made() { cmake --build build >"$log" 2>&1; }
tested() { ctest --test-dir build --output-on-failure >"$log" 2>&1; }
cmake -B build -DCMAKE_C_FLAGS="$*" >"$log" && made || wrong "it does not build"
tested || wrong "its test fails"

# Another word: the test tells where, shows it, and takes it when it is told to.
sed -i 's/What is your name?/Who are you?/' Till_2.toml
made || wrong "it does not build any more"
! tested || wrong "another text passes"
has 'test/enter_name-en.png: '
has 'pixels differ in 48,66 '
[ -s build/enter_name-en.difference.png ] && [ -s build/enter_name-en.actual.png ] || wrong "no pictures"
[ "$(ls build/*.difference.png | wc -l)" = 1 ] || wrong "more than one differs"
UTI_UPDATE=1 tested || wrong "it is not renewed"
tested || wrong "it was not renewed"

# A "No" that answers yes stops the build, with its place and rule.
sed -i 's/key = "ESCAPE"/key = "F1"/' Till_2.toml
! made || wrong "the build lets a mistake pass"
has 'Till_2.toml:60:5: error: every button of this confirmation answers yes'
has '[buttons]'
exit $status
