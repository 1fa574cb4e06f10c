#!/usr/bin/env bash
# po_test.sh UTI SOURCES GOLDEN: a round trip through PO files changes nothing, translations come into
# their places and nothing else moves, mistakes are told as in GOLDEN and nothing is written. gettext's
# msgfmt judges what is exported. With UTI_GOLDEN_UPDATE set, GOLDEN is written anew.
set -eu
uti=$1 sources=$2 golden=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
unset UTI_IMAGES EXTRES EXT_DEBUG
# gettext's library gives not all of its memory back.
echo leak:libgettextpo >"$folder/leaks"
export LSAN_OPTIONS=suppressions=$folder/leaks:print_suppressions=0
failed=0
wrong() {
  echo "$*"
  failed=1
}
cd "$folder"

# The examples there and back.
for name in shop parking first; do
  example=$sources/examples/$name/$name.toml
  "$uti" po export "$example" -o "$name" 2>said || wrong "export of $name: $(cat said)"
  cp "$example" "$name.toml"
  for po in "$name"/*.po; do
    msgfmt -c -o /dev/null "$po" || wrong "msgfmt refuses $po"
  done
  "$uti" po import "$name.toml" "$name"/*.po 2>said || wrong "import of $name: $(cat said)"
  cmp "$example" "$name.toml" || failed=1
  cp -r "$name" before
  "$uti" po export "$example" -o "$name" 2>/dev/null
  diff -r before "$name" || wrong "another export of $name differs"
  rm -r before
done
grep -qx '#. CONFIRM, button 1: 10 x 2 cells' shop/shop.ru.po || wrong "no room is told"
grep -qx '#. CONFIRM, label goods: 27 x 3 cells' shop/shop.ru.po || wrong "no room is told"

# A text in every form that a source may give it, with the ends of lines of another system.
cat >forms.toml <<'END'
# head
module = "forms"
[languages]
en = 0
ru = 0
id = 0
[sections]
4 = { en = 0, ru = 0 }

[strings]   # all of them
OK = { id = 0x1001, en = "OK" } # inline
CITE   =   { id = 0x1002,   en = 'a\nb "c"',   ru = 'г\nд "е"' }   # literal
  DOT.id = 0x1003
  DOT.en = "Dot" # dotted
LONG.id = 0x1004
LONG.en = """
one
two"""
LONG.ru = """
один
два""" # long
NEST = { id = 0x1005, text.en = "Nest" }
FMT = { id = 0x1006, en = "%s of %5.2f", ru = "%s из %5.2f" }
NUM = { id = 0x1007, en = "{0}, {1}", ru = "{1}; {0}" }
RAW = { id = 0x1008, en = "Raw", ru = { hex = "C0" } }
LOG = { id = 0x4001, en = "Log" }
HEX = { id = 0x4002, hex = "00 01" }
[strings.TAB]
id = 0x1009
en = "Tab\tbed" # here

	# next
[strings.INNER]
id = 0x100A
text = { en = "Inner" }
[strings.LITERAL]
id=0x100B
en = '''
It's "q"
w'''
END
sed -i 's/$/\r/' forms.toml
"$uti" po export forms.toml 2>said || wrong "export of forms: $(cat said)"
for po in forms.*.po; do msgfmt -c -o /dev/null "$po" || wrong "msgfmt refuses $po"; done
[ "$(grep -c '^msgctxt' forms.ru.po)" = 11 ] && [ "$(grep -c '^msgctxt' forms.id.po)" = 11 ] ||
  wrong "the PO files of forms have other strings"
[ "$(grep -A1 '^#, c-format' forms.ru.po | tail -1)" = 'msgctxt "FMT"' ] || wrong "no c-format"
# Each translation says what the original says, with another letter.
for po in forms.*.po; do
  msgen "$po" | LC_ALL=C.UTF-8 msgfilter --keep-header sed 's/[ota]/Q/g; s/[оди]/я/g' >new.po
  mv new.po "$po"
done
cp forms.toml forms0.toml
"$uti" po import forms.toml forms.id.po forms.ru.po 2>said || wrong "import of forms: $(cat said)"
{ cat said && diff forms0.toml forms.toml | tr -d '\r'; } >seen || true
[ "$(grep -vc $'\r$' forms.toml)" = 0 ] || wrong "ends of lines are lost"

# What is not to be imported, what cannot be, and files that are none.
cat >m.toml <<'END'
module = "m"
[languages]
en = 0
ru = 0
[sections]
5 = { en = 0 }
[strings]
YES = { id = 0x1001, en = "Yes", ru = "Да" }
NO = { id = 0x1002, en = "No", ru = "Нет" }
ASK = { id = 0x1003, en = "Is it %s?", ru = "Это %s?" }
RAW = { id = 0x1004, en = "Raw", ru = { hex = "C0" } }
LOG = { id = 0x5001, en = "Log" }
WIDE = { id = 0x1005, en = "%s", ru = "%d", allow = ["placeholders"] }
END
cp m.toml m0.toml
"$uti" po export m.toml 2>/dev/null
head='msgid ""
msgstr ""
"Language: ru_RU\n"
"Content-Type: text/plain; charset=utf-8\n"
'
import() { # the entries; the header if not the usual one
  printf '%s\n%s\n' "${2-$head}" "$1" >m.po
  echo "--- $1" | head -2
  status=0
  "$uti" po import m.toml m.po 2>&1 || status=$?
  echo "exit $status"
  [ $status = 0 ] || cmp m.toml m0.toml
}
entry() { printf 'msgctxt "%s"\nmsgid "%s"\nmsgstr "%s"\n\n' "$@"; }
{
  import "$(printf '#, fuzzy\n' && entry YES Yes Ага && entry NO No '' &&
    entry GONE Gone Хорошо | sed 's/^[^ ]/#~ &/')"
  import "$(entry YES Yes 'Да €漢漢ß' && entry ASK 'Is it %s?' 'Это %d?' && entry GONE Gone Ушло &&
    entry NO Not Не && entry RAW Raw Сырое && entry LOG Log Журнал && entry WIDE %s %i)"
  import "$(printf 'msgid "Yes"\nmsgstr "Да"\n\nmsgctxt "NO"\nmsgid "No"\nmsgid_plural "Noes"\nmsgstr[0] "Нет"')"
  import "$(entry YES Yes '\a')"
  import "$(entry YES Yes Ага)" "${head/ru_RU/fr}"
  import "$(entry YES Yes Ага)" "${head/ru_RU/en}"
  import "$(entry YES Yes Ага)" "${head/utf-8/KOI8-R}"
  import "$(entry YES Yes Ага)" ''
  import "$(entry YES Yes Ага && entry YES Yes Да)"
  import "$(entry YES Yes Ага)broken"
  import "$(entry YES Yes 'Ага\q')"
  import "$(entry YES Yes $'\xcf\xf0')"
  import "$(entry YES Yes Ага)" "${head/ru_RU/}"
  echo '--- one language twice, and none'
  "$uti" po import m.toml m.ru.po m.ru.po 2>&1 || true
  sed '/ru/d' m0.toml >one.toml
  "$uti" po export one.toml 2>&1 || echo "exit $?"
} >>seen || true

# What a translator has written is not lost by another export.
sed -i 's/^msgctxt "YES"/# mine\n#, fuzzy\n&/; s/"Да"/"Ага"/; s/Translator: none/Translator: Anna/' m.ru.po
sed -i 's/"No"/"Not"/; /^WIDE/d' m.toml
{
  "$uti" po export m.toml 2>&1
  grep -v Date m.ru.po
  msgfmt -c -o /dev/null m.ru.po
  sed -i 's/"Это %s?"/"Оно %s?"/' m.ru.po
  "$uti" po export m.toml 2>&1 || echo "exit $?"
} >>seen

# No end of a file brings it down.
for ((size = $(stat -c %s m.ru.po); size > 0; size -= 41)); do
  head -c "$size" m.ru.po >cut.po
  status=0
  "$uti" po import m.toml cut.po >said 2>&1 || status=$?
  [ $status -le 1 ] || wrong "$size bytes: $(cat said)"
done

# A pseudo-language is one of the module: longer, in brackets, placeholders whole.
{
  echo '--- pseudo'
  printf '%s\n' 'module = "p"' 'code_page = "windows-1252"' '[languages]' 'en = 7' '[strings]' \
    'A = { id = 0x1001, en = "Hello, %s!" }' 'B = { id = 0x3001, en = "%5.2f {} of\n{0}\\nlines\n" }' \
    'C = { id = 0x1002, en = "images/a.png" }' 'D = { id = 0x1003, en = "12:30" }' \
    'E = { id = 0x1004, hex = "01" }' >p.toml
  mkdir -p out
  "$uti" compile p.toml -o out --pseudo zz
  "$uti" dump out/p.res --code-page windows-1252
  "$uti" compile p.toml -o out --pseudo en 2>&1 || echo "exit $?"
} >>seen

[ -z "${UTI_GOLDEN_UPDATE:-}" ] || cp seen "$golden"
diff -u "$golden" seen || failed=1
exit $failed
