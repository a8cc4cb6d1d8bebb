#!/bin/sh
# What the documents show is true: the host of the guide finds the registered component and builds a page, the examples of
# the formats are read and written again to the byte, and the commands of the README work.
# guide_test.sh STAGE GUIDE_HOST SOURCES
set -eu
stage=$1
host=$2
sources=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export XDG_DATA_HOME="$folder/data" XDG_DATA_DIRS="$folder" TMPDIR="$folder"
mkdir "$folder/site"

if "$host" "$folder/site/" 2>"$folder/errors"; then
    echo "it found a component that is not registered" >&2
    exit 1
fi
"$stage/qelhost" register >/dev/null
"$host" "$folder/site/" >"$folder/summary"

expected='Se muestra el motivo <b>"Globo"</b>. No se reproduce ningún sonido de fondo. '
[ "$(cat "$folder/summary")" = "$expected" ] || { cat "$folder/summary"; exit 1; }
grep -q '<a href="https://example.org/"><img src="./qelspr1.gif"' "$folder/site/page.html"
cmp "$folder/site/qelspr1.gif" "$stage/QelPluginAnimationDesigns/Fiestas/Globo.gif"

"$sources/tools/extract-code" "$sources/docs/formats.md" script | sed 's/$/\r/' >"$folder/script"
printf '<body>' >"$folder/mypage.html"
sed -n 's/^    qelhost //p' "$sources/README.md" | grep ' mysite' >"$folder/commands"
[ "$(wc -l <"$folder/commands")" -eq 5 ]
cd "$folder"
# The script stands for what an author would choose in the dialog.
sed 's/#.*//; s/^module edit \(.*\)/module script \1 script/' commands | while read -r command; do
    eval "\"$stage/qelhost\" $command" >/dev/null
done
grep -q qelspr1.gif mysite/build/mypage.html
"$stage/qelhost" module script mysite 1 | cmp - script

# The table of the archive: an offset, bytes, a meaning.
sed -n 's/^| [0-9]* | \([0-9A-F ]*\) |.*/\1/p' "$sources/docs/formats.md" | tr -d ' \n' | sed 's/../\\x&/g' |
    xargs -0 printf >archive
[ "$(wc -c <archive)" -eq 52 ]
"$stage/qelhost" archive unpack archive unpacked >/dev/null
[ "$(cat unpacked/a.txt)" = abc ]
"$stage/qelhost" archive pack again unpacked >/dev/null
cmp archive again
