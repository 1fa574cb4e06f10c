#!/bin/sh
# window_test.sh: a person at the window of a small program, on an X server that nobody sees.
#   window_test.sh WINDOW_PROGRAM WINDOW_PEER
# Clicks and keys reach the form, the window shows the picture that is saved, what was recorded is
# replayed without a window to the same end, and a window that goes away takes the form with it.
set -u
program=$1 peer=$2
work=$(mktemp -d)
mkfifo "$work/number"
Xvfb -displayfd 3 -screen 0 800x700x24 -nolisten tcp 3<>"$work/number" >/dev/null 2>&1 &
server=$!
trap 'kill $server; rm -rf "$work"' EXIT
read -r number <"$work/number"
export DISPLAY=":$number" UTI_OUT="$work" SDL_VIDEODRIVER=x11
unset UTI_SCRIPT UTI_DISPLAY
# What the desktop's message bus keeps for good is not ours to free.
echo leak:libdbus >"$work/leaks"
export LSAN_OPTIONS="suppressions=$work/leaks:print_suppressions=0"
failed=0

expect() { # what, command...
  what=$1
  shift
  "$@" || { echo "FAILED: $what" && failed=1; }
}

# Starts the program in a window and waits until the window is there.
start() { # name of the recording
  UTI_WINDOW=1 UTI_RECORD="$work/$1" timeout 60 "$program" >"$work/$1.out" 2>"$work/$1.err" &
  run=$!
  window=$(timeout 30 xdotool search --sync --onlyvisible --name window-program | head -1)
  xdotool windowfocus "$window"
}

finish() { # name of the recording, line that the program prints
  wait $run
  expect "$1: exit status $?" [ $? -eq 0 ]
  echo "$2" | diff - "$work/$1.out" || { echo "FAILED: $1" && cat "$work/$1.err" && failed=1; }
}

# The same without a window.
replay() { # name of the recording
  mkdir "$work/again"
  UTI_SCRIPT="$work/$1" UTI_OUT="$work/again" "$program" >"$work/again/out" 2>&1
  expect "$1: replaying" diff "$work/$1.out" "$work/again/out"
}

press() { # keys of the PC...
  xdotool key --delay 50 "$@"
}

click() { # x and y in the window
  xdotool mousemove --window "$window" "$1" "$2" click 1
}

start answered
press A n Cyrillic_zhe BackSpace
click 117 451 # 2, twice: b
click 117 451
press Cyrillic_ya KP_7 7
xdotool mousemove --window "$window" 60 150 mousedown 1
for x in 100 150 200; do xdotool mousemove --window "$window" $x $((350 - x)); done
xdotool mouseup 1
press F12
for moment in 1 2 3 4 5 6 7 8 9; do [ -f "$work/screen-1.txt" ] || sleep 0.3; done
expect "the window shows what is saved" "$peer" "$window" shows "$work/screen-1.png"
expect "the text beside the picture" grep -q 'input 10,10 220x30 "Anbяp7"' "$work/screen-1.txt"
click 245 582 # OK
finish answered "state 1 name \"$(printf 'Anb\377p7')\""
replay answered
expect "the replayed picture" cmp "$work/screen-1.png" "$work/again/screen-1.png"
expect "the replayed text" diff "$work/screen-1.txt" "$work/again/screen-1.txt"
rm -r "$work/again"

start closed
press 1
"$peer" "$window" close
finish closed 'state -1 name "1"'
replay closed

start interrupted
kill -TERM $(pgrep -P $run)
finish interrupted 'state -1 name ""'

for wrong in 'UTI_WINDOW=5' '-u SDL_VIDEODRIVER -u DISPLAY -u WAYLAND_DISPLAY UTI_WINDOW=1' "UTI_WINDOW=1 UTI_RECORD=$work/none/x"; do
  env $wrong timeout 20 "$program" >/dev/null 2>"$work/said"
  expect "$wrong: exit status" [ $? -eq 2 ]
  expect "$wrong: message" grep -q '^uti: ' "$work/said"
done
exit $failed
