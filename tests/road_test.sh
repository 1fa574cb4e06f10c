#!/usr/bin/env bash
# road_test.sh SOURCE BUILD UTI: walks the road of docs/terminal.md with its own files, from an empty
# folder to the program under the emulator, and puts the page's adapter under that.
# BUILD is for the terminal, UTI the command of this PC.
set -eu
source=$1 build=$2 uti=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset "${!UTI_COM@}" UTI_PRINTER UTI_SCRIPT UTI_WINDOW EXTRES EXT_DEBUG default_lang CMAKE_PREFIX_PATH UTI_TOOL

export HOME=$work/home
mkdir -p "$HOME/uti/bin" "$HOME/uti/share"
ln -s "$source" "$work/uti"
ln -s "$uti" "$HOME/uti/bin/uti"
cmake --install "$build" --prefix "$HOME/uti-device" --strip >/dev/null
ln -s "$HOME/uti-device/share/uti" "$HOME/uti/share/uti"
"$source/tests/page_files.sh" "$source/docs/terminal.md" "$work/meter"
cd "$work/meter"
page=$PWD

status=0
is() { # what is looked at, what was expected, what came
  [ "$2" = "$3" ] || { printf 'FAILED: %s: expected\n%s\nbut there is\n%s\n' "$1" "$2" "$3"; status=1; }
}
# Does what stands behind a dollar and compares what is printed with the lines below.
walk() { # file
  local command='' expected='' line
  while IFS= read -r line <&3 || [ -n "$command" ]; do
    if [ -n "$line" ] && [ "${line#\$ }" = "$line" ]; then
      expected+=$line$'\n'
      continue
    fi
    if [ -n "$command" ]; then
      eval "$command" >"$page/came" 2>&1 3<&- || { cat "$page/came"; is "$command" success "status $?"; }
      is "$command" "$(printf %s "$expected")" "$(cat "$page/came")"
    fi
    command=${line#\$ } expected=
  done 3<"$1"
}
walk road.txt
walk "$page/serial.txt"

# What the page finds lacking of two libraries in place of a vendor's: nothing, and the clock.
cp "$HOME/uti-device/lib/libuti-host.so" libvendor.so
is 'what the stand-in lacks' '' "$(. "$page/lacks.sh")"
cp "$HOME/uti-device/lib/libuti.so" libvendor.so
is 'what another library lacks' GetTicks "$(. "$page/lacks.sh" | grep '^GetT')"

# The vendor's API, as far as the adapter needs it, says on the paper that it was used.
cd "$page"
cat >vt.c <<'END'
#include "vt.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

int vt_open(const char *name, int flags) {
    const int mode = flags & VT_WRITE ? (flags & VT_READ ? O_RDWR : O_WRONLY) : O_RDONLY;
    return open(name, mode | (flags & VT_CREATE ? O_CREAT : 0) | (flags & VT_CUT ? O_TRUNC : 0), 0666) + 1;
}
int vt_close(int file) { return close(file - 1) == 0; }
int vt_read(int file, void *buffer, int size, int *done) {
    return (*done = (int)read(file - 1, buffer, (size_t)size)) >= 0;
}
int vt_write(int file, const void *buffer, int size, int *done) {
    return (*done = (int)write(file - 1, buffer, (size_t)size)) == size;
}
int vt_seek(int file, long offset) { return lseek(file - 1, offset, SEEK_SET) == offset; }
long vt_size(int file) {
    struct stat status;
    return fstat(file - 1, &status) == 0 ? (long)status.st_size : -1;
}
static void split(time_t at, struct vt_clock *clock) {
    const struct tm *const local = localtime(&at);
    *clock = (struct vt_clock){local->tm_year, local->tm_mon, local->tm_mday,
                               local->tm_hour, local->tm_min, local->tm_sec};
}
int vt_changed(const char *name, struct vt_clock *when) {
    struct stat status;
    if (stat(name, &status) != 0)
        return 0;
    split(status.st_mtime, when);
    return 1;
}
int vt_remove(const char *name) { return unlink(name) == 0; }
int vt_error(void) { return errno; }
void vt_now(struct vt_clock *now) { split(86400 * 365, now); }
unsigned long long vt_microseconds(void) { return 1; }
void vt_sleep(unsigned long microseconds) { usleep((unsigned)microseconds); }
int vt_printer(const char *line, int height) { return printf("vt %d: %s\n", height, line) > 0; }
END
{
  echo 'add_library(vt SHARED vt.c)'
  cat adapter.cmake
} >>CMakeLists.txt
if ! { cmake -B device "-DCMAKE_C_FLAGS=-Wall -Wextra -Wconversion -Wshadow -Werror" &&
  cmake --build device; } >log 2>&1; then
  cat log
  exit 1
fi
cp device/meter device/lib*.so terminal
cd terminal
rm meter*.log
is 'the adapter: a library that the program asks for' 1 \
  "$(arm-linux-gnueabihf-readelf -d meter | grep -c 'NEEDED.*libadapter.so')"
host=$HOME/uti-device/lib/libuti-host.so
is 'what the vendor prints' 'vt 16: Parking, 30 minutes' "$($run -E LD_PRELOAD="./libadapter.so $host" ./meter)"
is 'the settings' 'LAST=3' "$(grep LAST meter.ini | tr -d '\r')"
is 'the log' '[meter] Started on 71-01-01, library' \
  "$("$uti" log --lang en meter | grep -o '.meter. Started on ..-..-.., library')"
"$uti" log meter | grep -q ' 1971-01-01 ' || is 'the clock of the log' "the vendor's" another
exit $status
