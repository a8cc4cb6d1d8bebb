#!/bin/sh
# The host of the guide finds the registered component and builds a page: guide_test.sh STAGE GUIDE_HOST
set -eu
stage=$1
host=$2
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
