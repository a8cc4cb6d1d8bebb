#!/bin/sh
# What cmake --install puts into a folder registers and runs from there and goes again: install_test.sh CMAKE BUILD HOST
# HOST is the host of the guide, which finds the component by its program name alone.
set -eu
cmake=$1 build=$2 host=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
prefix="$folder/un prefijo ñ"
library="$prefix/lib/qel"
classes="$folder/data/qel/classes"
export HOME="$folder" TMPDIR="$folder" XDG_DATA_HOME="$folder/data"
mkdir "$folder/site"
fail() { echo "$1" >&2 && exit 1; }

# Builds the page of the guide with the folder for all users that is given, and looks at what was loaded and copied.
build_page() {
    rm -f "$folder"/loaded.*
    LD_LIBRARY_PATH=$library LD_DEBUG=files LD_DEBUG_OUTPUT="$folder/loaded" XDG_DATA_DIRS=$1 \
        "$host" "$folder/site/" >/dev/null 2>&1 || return 1
    for name in libqelcom QelPluginAnimation; do
        file=$(sed -n "s/.*calling init: \(.*\/$name.so\)$/\1/p" "$folder"/loaded.*)
        [ "$(realpath "$file")" = "$library/$name.so" ] || fail "it loads $name.so from: $file"
    done
    cmp "$folder/site/qelspr1.gif" "$library/QelPluginAnimationDesigns/Fiestas/Globo.gif"
}

# The component that is named has a manifest of its own: a person's in the build folder stays.
"$cmake" --install "$build" --prefix "$prefix" --component Unspecified >/dev/null
(cd "$build/stage" && ls -- *.so) >"$folder/modules"
(cd "$library" && ls -- *.so) | diff "$folder/modules" - || fail "it installs other modules than there are"
cp "$library/QelPluginAnimationDesigns/Fiestas/Tarta.gif" "$library/QelPluginAnimationDesigns/Fiestas/Globo.gif"
build_page "$prefix/share" || fail "it does not run with the class files of the prefix"
! build_page "$folder" || fail "it finds a component that is not registered"
"$prefix/bin/qelhost" register
grep -r ProgID "$classes" | sed 's/.*{/{/' | sort >"$folder/registered"
grep -r ProgID "$prefix/share/qel" | sed 's/.*{/{/' | sort | diff "$folder/registered" - || fail "its class files are others"
build_page "$folder" || fail "it does not run registered"
"$prefix/bin/qelhost" unregister
[ -z "$(ls "$classes")" ] || fail "unregistered, it leaves entries"
tr '\n' '\0' <"$build/install_manifest_Unspecified.txt" | xargs -0 rm
[ -z "$(find "$prefix" ! -type d)" ] || fail "removed, it leaves $(find "$prefix" ! -type d)"
