#!/bin/sh
# lorekeep-tool as a user runs it: exit statuses and what it prints.
#   command_line_test.sh path/to/lorekeep-tool tests/tool/data
set -u
tool="$1"
data="$2"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

# expect STATUS DESCRIPTION COMMAND...: runs the command, output in $work/out.
expect() {
    want=$1 what=$2
    shift 2
    "$@" >"$work/out" 2>"$work/err"
    got=$?
    if [ "$got" -ne "$want" ]; then
        echo "FAIL: $what: exit $got, expected $want"
        cat "$work/out" "$work/err"
        failed=1
    fi
}
# contains DESCRIPTION TEXT: the last output holds the text.
contains() {
    if ! grep -qF -- "$2" "$work/out"; then
        echo "FAIL: $1: output lacks: $2"
        cat "$work/out"
        failed=1
    fi
}

expect 2 "no command" "$tool"
expect 2 "unknown command" "$tool" bogus
expect 2 "unknown option" "$tool" check --bogus "$data/clean"
expect 2 "check without paths" "$tool" check
expect 2 "bad format" "$tool" check --format xml "$data/clean"
expect 2 "export without language" "$tool" export "$data/clean" -o "$work/x.po"
expect 0 "help" "$tool" --help
contains "help" "lorekeep-tool check"

expect 0 "check a clean folder" "$tool" check "$data/clean"
[ -s "$work/out" ] && { echo "FAIL: clean folder printed findings"; cat "$work/out"; failed=1; }
expect 1 "check a broken file" "$tool" check "$data/clean" "$data/broken.sch"
contains "broken file" "broken.sch: file 0: error: does not load"
# Spelling: warnings only; a mod's word list and a missing dictionary.
expect 0 "spelling" "$tool" check --spelling "$data/clean"
contains "spelling" 'intro.sch: en body 9: warning: "traveller" is not in the English dictionary ('
printf 'Traveller\r\n  traveller \n' >"$work/words"
expect 0 "spelling with a word list" "$tool" check --spelling --words "$work/words" "$data/clean"
[ -s "$work/out" ] && { echo "FAIL: the word list's words were reported"; cat "$work/out"; failed=1; }
expect 0 "spelling without a dictionary" env LOREKEEP_DICTIONARIES=en=xx_NONE \
    "$tool" check --spelling "$data/clean"
if [ -s "$work/out" ] || ! grep -qF "no English spelling dictionary (xx_NONE" "$work/err"; then
    echo "FAIL: a missing dictionary"; cat "$work/out" "$work/err"; failed=1
fi
expect 2 "a word list without --spelling" "$tool" check --words "$work/words" "$data/clean"
expect 2 "a missing word list" "$tool" check --spelling --words "$work/none" "$data/clean"
expect 1 "check a missing path" "$tool" check "$data/clean" "$work/missing"
expect 1 "json" "$tool" check --format json "$data/broken.sch"
contains "json" '"severity":"error"'
[ "$(head -c 1 "$work/out")" = "[" ] || { echo "FAIL: json is not an array"; failed=1; }

expect 0 "render" "$tool" render "$data/clean/intro.sch" --language fr -o "$work/fr.html"
grep -q 'lang="fr"' "$work/fr.html" && grep -q "Bienvenue, voyageur." "$work/fr.html" ||
    { echo "FAIL: render wrote no French page"; failed=1; }
expect 1 "render a file that does not load" "$tool" render "$data/broken.sch"
expect 2 "render without a file" "$tool" render --language fr

cp -R "$data/clean" "$work/mod"
cp "$work/mod/intro.sch" "$work/intro.before"
expect 0 "export" "$tool" export --language de "$work/mod" -o "$work/de.po"
if command -v msgfmt >/dev/null; then
    expect 0 "msgfmt --check" msgfmt --check -o /dev/null "$work/de.po"
fi
expect 0 "import unchanged" "$tool" import "$work/de.po" "$work/mod"
cmp -s "$work/mod/intro.sch" "$work/intro.before" || { echo "FAIL: unchanged import wrote"; failed=1; }
# A good title and a body that lost its line break: the title still applies.
sed 's/msgstr "Die Burg"/msgstr "Die Feste"/; s/Reisender\.\\\\n<br>\\\\n/Reisender./' \
    "$work/de.po" >"$work/de2.po"
expect 1 "import a dropped marker" "$tool" import "$work/de2.po" "$work/mod"
contains "dropped marker" "refused: the markers differ from the English"
contains "dropped marker" "intro.sch: 1 translation applied"
grep -q "Die Feste" "$work/mod/intro.sch" || { echo "FAIL: the good entry was not applied"; failed=1; }

# Never a hang, never a whole read of what the window would not read: a FIFO,
# a link to a device, a sparse 1 GB schema and a PO file past 1 GB are refused.
mkfifo "$work/fifo.sch" "$work/fifo.po"
ln -s /dev/zero "$work/zero.sch"
truncate -s 1G "$work/big.sch"
truncate -s 1073741825 "$work/big.po"
expect 1 "render a FIFO" timeout 20 "$tool" render "$work/fifo.sch"
expect 1 "render a link to /dev/zero" timeout 20 "$tool" render "$work/zero.sch"
expect 1 "import a FIFO" timeout 20 "$tool" import "$work/fifo.po" "$work/mod"
expect 1 "import a huge PO file" timeout 20 "$tool" import "$work/big.po" "$work/mod"
expect 1 "check a huge file" timeout 20 "$tool" check "$work/big.sch"
contains "huge file" "error: cannot be read"
rm "$work/fifo.sch" "$work/fifo.po" "$work/zero.sch" "$work/big.sch" "$work/big.po"

# A full disk (here a file-size limit): the output is not written, its old
# content stays, and the status says so.
echo old >"$work/de.html"
cp "$work/de.po" "$work/de.po.before"
expect 1 "render to a full disk" sh -c 'ulimit -f 1; exec "$@"' sh \
    "$tool" render "$work/mod/intro.sch" -o "$work/de.html"
expect 1 "export to a full disk" sh -c 'ulimit -f 1; exec "$@"' sh \
    "$tool" export --language de "$work/mod" -o "$work/de.po"
[ "$(cat "$work/de.html")" = old ] && cmp -s "$work/de.po" "$work/de.po.before" ||
    { echo "FAIL: a failed write changed the old output"; failed=1; }
# Standard output by any name is a stream: appended to, never replaced.
expect 0 "render to /dev/stdout" sh -c '"$@" -o /dev/stdout >>"$0"' "$work/de.html" \
    "$tool" render "$work/mod/intro.sch"
[ "$(head -n 1 "$work/de.html")" = old ] && grep -q "</html>" "$work/de.html" ||
    { echo "FAIL: /dev/stdout replaced the file it appends to"; failed=1; }
expect 1 "findings to a full disk" sh -c '"$@" >/dev/full' sh "$tool" check --format json "$data/clean"
# Two files of one name under two paths cannot both be PO entries.
cp -R "$work/mod" "$work/mod2"
expect 0 "export of clashing names" "$tool" export --language de "$work/mod" "$work/mod2" \
    -o "$work/both.po"
grep -q "mod2/intro.sch: another of the paths holds a schema named intro.sch" "$work/err" ||
    { echo "FAIL: a clashing name was not reported"; cat "$work/err"; failed=1; }
rm -R "$work/mod2"

# A folder that cannot be read is an error, not silence; JSON stays UTF-8
# with a file name that is not.
mkdir "$work/mod/secret"
cp "$data/broken.sch" "$work/mod/$(printf 'caf\351.sch')"
chmod 755 "$work"
chmod 000 "$work/mod/secret"
as_user=""
[ "$(id -u)" -eq 0 ] && as_user="setpriv --reuid=65534 --regid=65534 --clear-groups"
expect 1 "check an unreadable folder" $as_user "$tool" check "$work/mod"
contains "unreadable folder" "secret: file 0: error: the folder cannot be read"
expect 1 "json of a Latin-1 name" "$tool" check --format json "$work/mod"
iconv -f UTF-8 -t UTF-8 "$work/out" >/dev/null 2>&1 || { echo "FAIL: JSON is not UTF-8"; failed=1; }
contains "json of a Latin-1 name" 'caf\udce9.sch'
chmod 755 "$work/mod/secret"

# Find and replace over a mod: markers skipped, only changed records
# rewritten, a dry run writes nothing, a file that cannot be written is
# reported while the others are done.
cp -R "$data/clean" "$work/rename"
expect 0 "find" "$tool" find --find garde "$work/rename"
contains "find" 'intro.sch: fr body 53: ...n<dc=200,30,30>\nPrenez garde.'
expect 0 "find skips markers" "$tool" find --find br --language all "$work/rename"
[ -s "$work/out" ] && { echo "FAIL: find matched inside a marker"; cat "$work/out"; failed=1; }
expect 2 "find without --find" "$tool" find "$work/rename"
expect 2 "find with --with" "$tool" find --find a --with b "$work/rename"
expect 2 "replace without --with" "$tool" replace --find a "$work/rename"
expect 2 "replace in no language" "$tool" replace --find a --with b --language xx "$work/rename"
cp "$work/rename/intro.sch" "$work/rename.before"
expect 0 "replace, dry" "$tool" replace --find Keep --with Tower --titles -n "$work/rename"
contains "replace, dry" "intro.sch: 1 would be replaced"
cmp -s "$work/rename/intro.sch" "$work/rename.before" || { echo "FAIL: a dry run wrote"; failed=1; }
expect 0 "replace" "$tool" replace --find Keep --with Tower --titles --language en "$work/rename"
contains "replace" "intro.sch: 1 replaced"
grep -q '<title=The Tower>' "$work/rename/intro.sch" || { echo "FAIL: not replaced"; failed=1; }
[ "$(sed -n '1,3p;5,7p' "$work/rename/intro.sch")" = "$(sed -n '1,3p;5,7p' "$work/rename.before")" ] ||
    { echo "FAIL: replace rewrote records it did not change"; failed=1; }
mkdir -p "$work/locked" "$work/open"
cp "$data/clean/intro.sch" "$work/locked/a.sch"
cp "$data/clean/intro.sch" "$work/open/b.sch"
chmod 444 "$work/locked/a.sch"
chmod 555 "$work/locked"
chmod 777 "$work/open"
chmod 666 "$work/open/b.sch"
expect 1 "replace in a file that cannot be written" $as_user "$tool" replace --find Beware \
    --with Careful "$work/locked" "$work/open"
contains "replace in a file that cannot be written" "b.sch: 1 replaced"
grep -q "a.sch: cannot be written" "$work/err" || { echo "FAIL: no write error"; cat "$work/err"; failed=1; }
grep -q "Careful" "$work/open/b.sch" || { echo "FAIL: the writable file was not done"; failed=1; }
chmod 755 "$work/locked"

exit $failed
