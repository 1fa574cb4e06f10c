#!/usr/bin/env bash
# show_test.sh UTI [BROWSER]: what `uti show` makes of a source with named texts, again at every
# save, and its page in a browser that has no network.
set -eu
uti=$1 browser=${2:-}
work=$(mktemp -d)
watcher=
trap '[ -z "$watcher" ] || kill $watcher 2>/dev/null; rm -rf "$work"' EXIT
unset "${!UTI_@}" EXTRES EXT_DEBUG
cd "$work"
status=0
wrong() { echo "FAILED: $*"; status=1; }
has() { grep -qF -- "$2" "$1" || wrong "$1 does not hold $2: $(cat "$1")"; }

cat >m.toml <<'EOF'
module = "m"
[languages]
en = 0
ru = 0
[strings]
PIN = { id = 0x1001, en = "PIN <code>" }
ASK = { id = 0x1002, en = "Your PIN", ru = "Введите ПИН-код своей карты, пожалуйста" }
LEFT = { id = 0x1003, en = "{0} left", ru = "осталось {0}" }
[dialogs.ENTER_PIN]
id = 0x3001
type = "edit"
edit = [
    { area = [8, 8, 222, 26], read_only = true, multi_line = true },
    { area = [56, 44, 128, 30] },
]
label = { name = "rest", area = [8, 90, 222, 24] }
[dialogs.ENTER_PIN.texts]
caption = "PIN"
text = "ASK"
labels.rest = { string = "LEFT", args = [3] }
[dialogs.PAPER]
id = 0x3002
type = "confirmation"
edit = { area = [8, 8, 222, 26], read_only = true }
button = [
    { area = [8, 60, 100, 40], key = "ENTER" },
    { area = [120, 60, 100, 40], key = "ESCAPE", colors = ["#FFFFFF", "#F8F8F8"] },
]
[dialogs.PAPER.texts]
caption = { literal = "Paper" }
text = [{ literal = "No paper" }, { literal = "Paper jam" }]
EOF

# By name and by id, and what a resource file does not know.
mkdir out
"$uti" show m.toml --dialog ENTER_PIN --lang ru --out out >said 2>noticed
diff - said <<<$'m-3001-ru.png\nm-3001-ru.txt'
has out/m-3001-ru.txt '"осталось 3"'
"$uti" show m.toml --dialog 0x3002 --lang en --out out >said
diff - said <<<$'m-3002-en.png\nm-3002-en.txt\nm-3002-2-en.png\nm-3002-2-en.txt'
has out/m-3002-2-en.txt '"Paper jam"'
"$uti" compile m.toml -o out
if "$uti" show out/m.res --dialog PAPER 2>said; then wrong "a name in a .res"; fi
has said "a resource file knows ids alone"
"$uti" show out/m.res --dialog 12289 --lang en --sheet sheet.png 2>noticed
[ "$(head -c 4 sheet.png | tail -c 3)" = PNG ] || wrong "no sheet"
[ ! -e m-3001-en.png ] || wrong "pictures that nobody asked for"

# Every save is drawn; mistakes leave the last pictures; what looks as before is left alone.
until_there() { # file text
  for moment in $(seq 100); do ! grep -qsF "$2" "$1" || return 0; sleep 0.05; done
  wrong "$1 never holds $2: $(cat "$1" seen errors)"
}
"$uti" show m.toml --out out --watch >seen 2>errors &
watcher=$!
until_there seen "6 pictures"
cp out/m-3001-en.png before.png
touch -d '1 hour ago' out/m-3002-en.png
sed -i 's/^id = 0x3001/& &/' m.toml
until_there errors "error:"
cmp out/m-3001-en.png before.png || wrong "a mistake changes a picture"
sed -i 's/^id = 0x3001.*/id = 0x3001/; s/Your PIN/Your code/' m.toml
until_there out/m-3001-en.txt '"Your code"'
[ "$(grep -c 'watching m.toml' seen)" -le 2 ] || wrong "drawn when nothing was saved"
[ -z "$(find out -name m-3002-en.png -mmin -30)" ] || wrong "a picture that is as before is written"
kill $watcher
wait $watcher || watcher=

"$uti" show m.toml --html page 2>noticed
has noticed "is cut"
! grep -nE 'https?:|src="/|url\(' page/index.html || wrong "the page asks for something elsewhere"
[ "$(ls page/*.png | wc -l)" = 6 ] || wrong "pictures beside the page: $(ls page)"
[ -n "$browser" ] || exit $status

# Someone who reads the page, and says in the end what was to be seen.
cat >reader.js <<'EOF'
const wrong = [], same = (what, seen, expected) => {
  if (String(seen) !== String(expected)) wrong.push(what + ': ' + seen);
};
const $$ = selector => Array.from(document.querySelectorAll(selector));
const seen = selector => $$(selector).filter(each => each.checkVisibility());
const choose = (name, value) => {
  const field = document.querySelector(`[name=${name}]` + (name === 'language' ? `[value=${value}]` : ''));
  if (name === 'language') field.checked = !field.checked; else field.value = value;
  field.dispatchEvent(new Event('input', { bubbles: true }));
};
window.addEventListener('load', () => {
  same('pictures', seen('img').filter(each => each.naturalWidth === 240 && each.naturalHeight === 320).length, 6);
  same('texts', $$('#d0x3001-1 figure[data-language=en] dd').map(each => each.textContent), 'PIN <code>,Your code,3 left');
  choose('finding', 'fit');
  same('cut', seen('img').map(each => each.alt), 'ENTER_PIN in ru');
  const [mark, picture] = [seen('.mark')[0], seen('img')[0]].map(each => each.getBoundingClientRect());
  same('place', [mark.left - picture.left, mark.width, mark.height], '9,222,26');
  choose('finding', 'missing');
  same('missing', seen('img').map(each => each.alt), 'ENTER_PIN in ru');
  same('lack', seen('li').map(each => each.textContent)[0], 'PIN has no text in ru [missing]');
  choose('finding', 'contrast');
  const pale = seen('.mark')[0].getBoundingClientRect();
  same('pale', [seen('img').length, seen('.mark').length, pale.width, pale.height], '4,4,100,40');
  choose('finding', 'fit');
  choose('size', '2');
  same('size', seen('img')[0].width, 480);
  choose('language', 'ru');
  same('none', seen('img').length + seen('#none').length, 1);
  choose('finding', '');
  same('English', seen('img').map(each => each.alt), 'ENTER_PIN in en,PAPER in en,PAPER (2) in en');
  choose('text', 'JAM');
  same('found', seen('img').map(each => each.alt), 'PAPER (2) in en');
  same('count', document.getElementById('count').textContent, '3 dialogs, 2 languages, 1 of 6 pictures, 10 findings');
  seen('dd')[1].dispatchEvent(new MouseEvent('mouseover', { bubbles: true }));
  same('pointed at', seen('.glow').length, 1);
  document.title = wrong.join('; ') || 'all well';
});
EOF
read_page() { # file
  HOME=$work timeout 120 "$browser" --headless --no-sandbox --disable-gpu --disable-dev-shm-usage --disable-extensions \
    --user-data-dir="$work/profile" --host-resolver-rules='MAP * ~NOTFOUND' --virtual-time-budget=5000 \
    --enable-logging=stderr --dump-dom "file://$work/page/$1" 2>"$work/console" >"$work/read"
}
{ cat page/index.html && echo '<script>' && cat reader.js && echo '</script>'; } >page/read.html
read_page read.html
grep '<title>' read >title
has title '<title>all well</title>'
read_page index.html
! grep CONSOLE console || wrong "the page talks to the console"
echo '<script>console.log("heard")</script>' >>page/index.html
read_page index.html
has console heard # so nothing was missed
exit $status
