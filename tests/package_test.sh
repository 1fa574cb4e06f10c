#!/usr/bin/env bash
# package_test.sh SOURCE BUILD FIRST_TEST [CMAKE-ARGUMENT...]: one project takes uti in with
# add_subdirectory, FetchContent and find_package, and its program runs; what is not there is told.
# UTI_RUN, where set, runs a program of another machine under the fake terminal.
set -eu
source=$1 build=$2 first=$3
shift 3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
# No uti command but the one that is told.
unset UTI_TOOL CMAKE_PREFIX_PATH
status=0

configure() { # build folder, further arguments
  cmake -G Ninja -S "$source/tests/package" -B "$@" "-DUTI_SOURCE=$source" -DCMAKE_BUILD_TYPE=Debug \
    "${machine[@]}" >log 2>&1
}
machine=("$@")

takes() { # way, further arguments
  local way=$1
  shift
  if ! configure "$way" "-DWAY=$way" "$@" || ! cmake --build "$way" --target first >log 2>&1 ||
    ! "$first" "$way/first" "$way/first.res" >log; then
    cat log
    echo "FAILED: $way"
    status=1
  fi
}
refuses() { # what is said, further arguments
  local said=$1
  shift
  rm -rf refused
  if configure refused -DWAY=find_package "$@" || ! tr -s ' \n' '  ' <log | grep -qF -- "$said"; then
    cat log
    echo "FAILED: not told: $said"
    status=1
  fi
}

cmake --install "$build" --prefix "$work/all" >/dev/null
for component in runtime dev; do
  cmake --install "$build" --prefix "$work/bare" --component $component >/dev/null
done
tool=$(sed -n 's/^UTI_TOOL:[A-Z]*=//p' "$build/CMakeCache.txt")
tool=${tool:-$work/all/bin/uti}

takes find_package "-DCMAKE_PREFIX_PATH=$work/all" "-DCOMPONENTS=host;tool" \
  "-DTARGETS=uti::uti-host;uti::uti-tool" "-DUTI_TOOL=$tool"
# The command is built on the way, where it is not a program of another machine.
if [ $# -gt 0 ]; then
  takes add_subdirectory "-DTARGETS=uti::uti-host;uti::uti-tool" "-DUTI_TOOL=$tool"
else
  takes add_subdirectory "-DTARGETS=uti::uti-host;uti::uti-tool"
fi
# From here on as the one before.
configure FetchContent -DWAY=FetchContent "-DTARGETS=uti::uti-host;uti::uti-tool" "-DUTI_TOOL=$tool" ||
  { cat log; echo "FAILED: FetchContent"; status=1; }

refuses "The component host of uti is not installed in $work/bare" \
  "-DCMAKE_PREFIX_PATH=$work/bare" -DCOMPONENTS=host
refuses "The component tool of uti is not installed" "-DCMAKE_PREFIX_PATH=$work/bare" -DCOMPONENTS=tool
refuses "The component gui of uti is not installed" "-DCMAKE_PREFIX_PATH=$work/all" -DCOMPONENTS=gui
refuses "-DUTI_TOOL=/path/to/bin/uti" "-DCMAKE_PREFIX_PATH=$work/all" -DUTI_TOOL=/bin/true
if [ $# -gt 0 ]; then
  refuses "there is no uti command here" "-DCMAKE_PREFIX_PATH=$work/bare"
fi
exit $status
