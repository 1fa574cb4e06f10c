#!/usr/bin/env bash
# manual_test.sh UTI MANUAL: the manual pages say what the help texts say and are sound, and bash and
# zsh complete each command, option and value.
set -eu
uti=$1 manual=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
wrong() { echo "FAILED: $*"; status=1; }

commands() { "$uti" ${1:-} --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p'; }

# Every word of a help text, in its order, on one line; the page the same way.
flat() { tr -s ' \n' '  '; }
check_page() { # command words...
  local page name line
  name=$(IFS=- && echo "uti${*:+-$*}")
  page=$manual/$name.1
  [ -s "$page" ] || { wrong "no page $name(1)"; return; }
  if command -v man >/dev/null; then
    MANWIDTH=1000 LC_ALL=C.UTF-8 man --warnings=w -l "$page" 2>"$work/warnings" | flat >"$work/page"
    [ ! -s "$work/warnings" ] || wrong "$name(1): $(cat "$work/warnings")"
    # What stands at the margin of the help text is headings; the usage is there without its word.
    "$uti" "$@" --help | sed -e 's/^Usage: //' -e '/^[A-Z][a-z]*:$/d' -e 's/\.$//' |
      while read -r line; do
        line=$(flat <<<"$line" | sed 's/ $//')
        grep -qF -- "$line" "$work/page" || echo "$name(1) does not say: $line"
      done >"$work/missing"
    [ ! -s "$work/missing" ] || wrong "$(cat "$work/missing")"
  fi
  for line in $(commands "$*"); do check_page "$@" "$line"; done
}
check_page

for page in uti.h.3 uti-formats.5; do
  [ -s "$manual/$page" ] || wrong "no page $page"
  command -v man >/dev/null || continue
  MANWIDTH=100 LC_ALL=C.UTF-8 man --warnings=w -l "$manual/$page" 2>"$work/said" >"$work/$page"
  # A page without end has no place where a table could be broken.
  grep -v 'will not fit on one page' "$work/said" >"$work/warnings" || true
  [ ! -s "$work/warnings" ] || wrong "$page: $(cat "$work/warnings")"
  # Marks of the source that came through.
  ! grep -n '\*\*\|``\|^ *|\|\](' "$work/$page" || wrong "$page holds marks of its source"
done

# What bash offers for the last of the words.
source "$manual/uti.bash"
offered() {
  COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMPREPLY=()
  _uti
  printf '%s\n' "${COMPREPLY[@]}"
}
same() { # what, expected; standard input
  local seen
  seen=$(sort)
  [ "$seen" = "$(sort <<<"$2")" ] || wrong "$1 offers: $seen"
}
mkdir "$work/folder" && touch "$work/file"
cd "$work"
offered uti '' | same "bash: uti" "$(commands)"
offered uti log --level '' | same "bash: --level" $'error\nsupport\ndebug'
offered uti log --level = e | same "bash: --level=e" error
offered uti log --res f | same "bash: --res" folder
offered uti compile f | same "bash: compile f" $'file\nfolder'
for command in '' $(commands); do
  "$uti" $command --help | grep -oE '^  -[^ ]*' | tr -d ' ' | tr ',' '\n' | sed 's/{.*//' >"$work/help"
  offered uti $command - | same "bash: uti $command -" "$(cat "$work/help")"
done

if command -v zsh >/dev/null; then
  for command in '' $(commands); do
    "$uti" $command --help | grep -oE '^  -[^ ]*' | tr -d ' ' | tr ',' '\n' | sed 's/{.*//' >"$work/help"
    # The specifications that the function hands to zsh, each with the option that it begins with.
    zsh -fc '
      _arguments() { print -rl -- "$@" }
      _describe() { }
      state= line=()
      source "$1" >/dev/null
      _uti${2:+_$2}' zsh "$manual/_uti" "$command" |
      sed -nE 's/^(\([^)]*\)|\*)(-[a-zA-Z-]+)=?\[.*/\2/p' | same "zsh: uti $command -" "$(cat "$work/help")"
  done
fi
exit $status
