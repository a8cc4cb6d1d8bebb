#!/bin/sh
# What cmake --install puts into a folder registers, runs and can be built against from there, and goes again:
# install_test.sh CMAKE BUILD HOST SOURCES
# HOST is the host of the guide, which finds the component by its program name alone.
set -eu
cmake=$1 build=$2 host=$3 sources=$4
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
setting() { sed -n "s/^$1:[^=]*=//p" "$build/CMakeCache.txt"; }
prefix="$folder/un prefijo ñ"
libraries="$prefix/$(setting CMAKE_INSTALL_LIBDIR)"
component="$libraries/qel"
classes="$folder/data/qel/classes"
export HOME="$folder" TMPDIR="$folder" XDG_DATA_HOME="$folder/data"
mkdir "$folder/site" "$prefix" "$prefix/share"
fail() { echo "$1" >&2 && exit 1; }

# Builds the page of the guide with the folder for all users that is given, and looks at what was loaded and copied.
build_page() {
    rm -f "$folder"/loaded.*
    LD_LIBRARY_PATH=$libraries LD_DEBUG=files LD_DEBUG_OUTPUT="$folder/loaded" XDG_DATA_DIRS=$1 \
        "$host" "$folder/site/" >/dev/null 2>&1 || return 1
    for file in "$libraries/libqelcom.so.1" "$component/QelPluginAnimation.so"; do
        loaded=$(sed -n "s|.*calling init: \(.*/$(basename "$file")\)$|\1|p" "$folder"/loaded.*)
        [ "$(realpath "$loaded")" = "$(realpath "$file")" ] || fail "it does not load $file, but: $loaded"
    done
    cmp "$folder/site/qelspr1.gif" "$component/QelPluginAnimationDesigns/Fiestas/Globo.gif"
}

# A component that is named has a manifest of its own: a person's in the build folder stays.
for part in runtime window development; do
    "$cmake" --install "$build" --prefix "$prefix" --component $part >/dev/null
    cat "$build/install_manifest_$part.txt"
    echo
done >"$folder/install_manifest.txt"
(cd "$build/stage" && ls -- *.so*) >"$folder/modules"
(cd "$libraries" && ls -- *.so* && cd qel && ls -- *.so) | sort | diff "$folder/modules" - ||
    fail "it installs other modules than there are"
cp "$component/QelPluginAnimationDesigns/Fiestas/Tarta.gif" "$component/QelPluginAnimationDesigns/Fiestas/Globo.gif"
build_page "$prefix/share" || fail "it does not run with the class files of the prefix"
! build_page "$folder" || fail "it finds a component that is not registered"
"$prefix/bin/qelhost" register
grep -r ProgID "$classes" | sed 's/.*{/{/' | sort >"$folder/registered"
grep -r ProgID "$prefix/share/qel" | sed 's/.*{/{/' | sort | diff "$folder/registered" - || fail "its class files are others"
build_page "$folder" || fail "it does not run registered"

# The manual names each command that there is.
"$prefix/bin/qelhost" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p' >"$folder/commands"
[ -s "$folder/commands" ] || fail "qelhost --help lists no commands"
while read -r command; do
    grep -qx "\.B $command" "$prefix/share/man/man1/qelhost.1" || fail "the manual does not name qelhost $command"
done <"$folder/commands"

# The line of the guide and a CMake project build the host of the guide. A runtime with sanitizers takes such a host alone.
if [ -z "$(setting QEL_SANITIZE)" ]; then
    ln -s "$prefix" "$folder/plain"
    "$sources/tools/extract-code" "$sources/docs/host-guide.md" c >"$folder/host.c"
    sed -n 's/^    \(cc .*pkg-config.*\)$/\1/p' "$sources/docs/host-guide.md" >"$folder/line"
    [ "$(wc -l <"$folder/line")" -eq 1 ] || fail "the guide has no line that compiles with pkg-config"
    (cd "$folder" && PKG_CONFIG_PATH="plain/$(setting CMAKE_INSTALL_LIBDIR)/pkgconfig" sh -eu line)
    host="$folder/host"
    build_page "$folder" || fail "the host that the guide's line builds does not run"
    printf '%s\n' 'cmake_minimum_required(VERSION 3.16)' 'project(host C)' 'find_package(Tesselwind 1.0 REQUIRED)' \
        'add_executable(host ../host.c)' 'target_link_libraries(host Tesselwind::qelcom)' >"$folder/site/CMakeLists.txt"
    "$cmake" -G Ninja -S "$folder/site" -B "$folder/made" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
    "$cmake" --build "$folder/made" >/dev/null
    host="$folder/made/host"
    build_page "$folder" || fail "the host that a CMake project builds does not run"
fi

"$prefix/bin/qelhost" unregister
[ -z "$(ls "$classes")" ] || fail "unregistered, it leaves entries"
# Someone else's file keeps its folder, an empty folder goes.
touch "$prefix/share/qel/else"
cp "$build/uninstall.cmake" "$folder"
LC_ALL=C "$cmake" -P "$folder/uninstall.cmake" >/dev/null
[ "$(cd "$prefix" && find . | sort | xargs)" = ". ./share ./share/qel ./share/qel/else" ] ||
    fail "removed, it leaves: $(find "$prefix")"
