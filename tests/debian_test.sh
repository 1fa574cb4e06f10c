#!/usr/bin/env bash
# debian_test.sh BUILD: the packages install into a root of their own, run there, serve a compiler
# through pkg-config, hold what their component says, and leave nothing behind when they are removed.
set -eu
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$work/root
mkdir -p "$work/packages" "$root/var/lib/dpkg"/{updates,info}
touch "$root/var/lib/dpkg/status"
(cd "$build" && cpack -B "$work/packages" >"$work/log" 2>&1) || { cat "$work/log"; exit 1; }
cd "$work/packages"
ls *.tar.gz >/dev/null

# What is in the root, but for dpkg's own files.
files() { (cd "$root" && find . -path ./var/lib/dpkg -prune -o -path ./var/log -prune -o -print | sort); }
package() {
  dpkg --root="$root" --log="$work/dpkg.log" --force-not-root --force-depends --force-bad-path \
    --force-script-chrootless "$@" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
}
files >"$work/before"
package --install ./*.deb

# The packages need one another in the version that they have.
for deb in ./*.deb; do
  version=$(dpkg-deb -f "$deb" Version)
  for needed in $(dpkg-deb -f "$deb" Depends | grep -o 'uti[a-z0-9-]* (= [^)]*' | sed 's/.*= //'); do
    [ "$needed" = "$version" ] || { echo "$deb is $version and needs $needed"; exit 1; }
  done
done

# The runtime is the library and nothing else; nothing is in two packages.
for deb in ./*.deb; do dpkg-deb -c "$deb" | awk '!/^d/ { print $6 }'; done | sort | uniq -d >"$work/twice"
[ ! -s "$work/twice" ] || { cat "$work/twice"; echo "in two packages"; exit 1; }
dpkg-deb -c libuti1_*.deb | awk '!/^d/ { print $6 }' | grep -v '/libuti\.so\.1' &&
  { echo "libuti1 holds more than the library"; exit 1; }
if readelf -S "$root"/usr/lib/*.so.* "$root/usr/bin/uti" | grep -q '\.debug_info'; then
  echo "not stripped"
  exit 1
fi

cat >program.c <<'END'
#include <stdio.h>
#include <uti.h>
int main(void) { return puts(UTILS_GetVersion()) < 0; }
END
export LD_LIBRARY_PATH=$root/usr/lib PKG_CONFIG_LIBDIR=$root/usr/lib/pkgconfig
cc program.c $(pkg-config --define-prefix --cflags --libs uti-host uti) -o program
./program
"$root/usr/bin/uti" --version
man -M "$root/usr/share/man" -w uti uti-log uti.h uti-formats >/dev/null

package --purge libuti1 libuti-dev libuti-host uti-tool uti-doc
files >"$work/after"
diff "$work/before" "$work/after"
