#!/bin/sh
# What the documents show is true: the hosts of the guide find the registered component and build a page, the examples
# of the formats are read and written again to the byte, and the commands of the README work.
# guide_test.sh STAGE HOSTS SOURCES
# HOSTS is the folder of the guide's hosts. PYTHON_PRELOAD names libraries that the one in Python loads before all others.
set -eu
stage=$1
hosts=$2
sources=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export XDG_DATA_HOME="$folder/data" XDG_DATA_DIRS="$folder" TMPDIR="$folder"
export BROWSER=true # what the README opens its page with here
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM
fail() { echo "$1" >&2 && exit 1; }

# host LANGUAGE ARGUMENT...: runs a host of the guide.
host() {
    language=$1
    shift
    case $language in
    c) "$hosts/guide_host" "$@" ;;
    cpp) "$hosts/guide_host_cpp" "$@" ;;
    python) # what the interpreter itself keeps in memory is not ours to check
        LD_PRELOAD=${PYTHON_PRELOAD-} ASAN_OPTIONS=detect_leaks=0 LIBQELCOM="$stage/libqelcom.so" \
            python3 "$hosts/guide_host.python" "$@" ;;
    esac
}

for language in c cpp python; do
    mkdir "$folder/$language"
    ! host $language "$folder/$language/" 2>"$folder/errors" || fail "$language: it finds what is not registered"
    grep -q 800401f3 "$folder/errors" || fail "$language: it does not name the failure: $(cat "$folder/errors")"
done
"$stage/qelhost" register >/dev/null
for language in c cpp python; do
    site="$folder/$language"
    host $language "$site/" >"$folder/summary"
    expected='Se muestra el motivo <b>"Globo"</b>. No se reproduce ningún sonido de fondo. '
    [ "$(cat "$folder/summary")" = "$expected" ] || fail "$language: $(cat "$folder/summary")"
    grep -q '<a href="https://example.org/"><img src="./qelspr1.gif"' "$site/page.html" || fail "$language: no picture"
    cmp "$site/qelspr1.gif" "$stage/QelPluginAnimationDesigns/Fiestas/Globo.gif"

    ! host $language "$site/" Nada.gif >/dev/null 2>"$folder/errors" || fail "$language: it hides a failed module"
    grep -q 'error "53: No se encuentra el archivo"' "$folder/errors" || fail "$language: no reason"
    grep -q '<h1>Hola</h1>' "$site/page.html" || fail "$language: no page"
    ! grep -q Error "$site/page.html" || fail "$language: the page has the text of the failure"
done

# The dialog fails without a display, and a process that was killed has left its copy of the archive.
printf before >"$folder/cpp/archive.before"
printf after >"$folder/cpp/module1.dat"
! host cpp "$folder/cpp/" --edit >/dev/null 2>"$folder/errors" || fail "the dialog opens without a display"
grep -q 'opening the dialog failed with 800a0039' "$folder/errors" || fail "$(cat "$folder/errors")"
[ "$(cat "$folder/cpp/module1.dat")" = before ] || fail "the archive is not put back"
[ "$(ls "$folder/cpp" | xargs)" = "module1.dat page.html qelspr1.gif" ] || fail "left behind: $(ls "$folder/cpp")"

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
