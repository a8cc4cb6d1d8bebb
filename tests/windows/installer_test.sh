#!/bin/bash
# The installer that the preset windows makes, under Wine: installed, upgraded, used and removed, for all users and for
# one, on Windows in 64 and in 32 bits. After that the files and the registry are as before, but for the author's site.
# wine_system.sh says what it needs.
set -euo pipefail
fail() { echo "$1" >&2 && exit 1; }
cd "$(dirname "$0")/../.."
. tests/windows/wine_system.sh
make_wine_system amd64
work=$PWD/build/wine-installed
rm -rf "$work"
mkdir -p "$work/older" "$work/once"
echo 'WScript.Quit 100' >"$work/nothing.vbs"

rm -f build/windows/tesselwind-*-windows.* # of other versions
pack() { (cd build/windows && cpack "$@") >"$folder/log" 2>&1 || fail "$(cat "$folder/log")"; }
LC_ALL=C pack
mv build/windows/tesselwind-*-windows.* "$work/once"
sleep 2 # until files have other times
LC_ALL=C.UTF-8 pack
for made in "$work"/once/*; do
    cmp "$made" "build/windows/$(basename "$made")" || fail "made twice, the packages differ"
done
# An older version, with a file that later ones do not have.
echo "an old motif" >"$work/older/Cigüeña.gif"
pack -G NSIS -B "$work" -D CPACK_PACKAGE_FILE_NAME=older -D CPACK_PACKAGE_VERSION=1.0.18 \
    -D "CPACK_INSTALLED_DIRECTORIES=$work/older;x86/QelPluginAnimationDesigns/Antiguos"

run() { tools/run-under-wine "$@" >"$folder/log" || fail "$* ended with $?: $(cat "$folder/log")"; }
# The installer refuses a folder, and changes nothing.
refuses() { # folder, options
    local code=0
    tools/run-under-wine build/windows/tesselwind-*-windows.exe /S "${@:2}" "/D=$1" >"$folder/log" || code=$?
    [ $code = 2 ] || fail "the installer ended with $code in $1 ${*:2}"
}
# Runs a script with each engine of the system: those of 64 and of 32 bits. Their own errors end them with 0.
clients() { # script [argument]
    local engine code
    for engine in $engines; do
        code=0
        tools/run-under-wine "C:\\windows\\$engine\\cscript.exe" //nologo "Z:$@" >"$folder/log" || code=$?
        [ $code = 100 ] || fail "$1 ended with $code in $engine: $(cat "$folder/log")"
    done
}
# Prints the files and the registry, without what is temporary or belongs to Wine.
state() {
    local part
    (cd "$drive" && find . \( -path './users/*/Temp' -o -path ./windows/temp \) -prune -o -print) | LC_ALL=C sort
    for part in HKEY_LOCAL_MACHINE HKEY_CURRENT_USER; do
        run reg export "$part\\Software" "Z:$work/registry" /y
        iconv -f UTF-16 -t UTF-8 "$work/registry" | awk '/^\[/ { shown = !/\\Software\\Wine|\\NetworkCards/ } shown'
    done
}

use() {
    local stage=$at/$tree script=$work/búho.qel
    # Wine asks its server whether a message is pending, for each token of a script.
    run "$stage/qelhost.exe" check "$at_windows\\$tree\\QelPluginAnimation.dll" --timeout 100
    run "$stage/qelhost.exe" init 'C:\sitio'
    echo '<html><body></body></html>' >"$work/page.html"
    run "$stage/qelhost.exe" page add 'C:\sitio' "Z:$work/page.html"
    echo '<pg.plugin uid="QelPluginAnimation" version="1.0"><pg.param name="playmidi" value="0">' \
        '<pg.param name="image" value="Búho.gif"><pg.param name="imagefolder" value="Animales">' >"$script"
    run "$stage/qelhost.exe" module add 'C:\sitio' page.html --script "Z:$script"
    run "$stage/qelhost.exe" build 'C:\sitio'
    cmp "$drive"/sitio/build/images/*.gif "$stage/QelPluginAnimationDesigns/Animales/Búho.gif"
    clients "$PWD/tests/windows/client.vbs"
    find "$drive" -name '*qelhost.lnk' -exec cat {} + | tr -d '\0' | grep -aqF "PATH=$at_windows\\$tree;" ||
        fail "the command prompt has another path"
}

test_in() { # name of the Windows, loader, folder of its word size, engines, part of the registry, options
    local drive=$work/$1/drive_c tree=$3 engines=$4 at at_windows key
    echo "the installer on $1 ${*:6}"
    export QEL_WINE=$work/$1 QEL_WINE_PROGRAM=$folder/$2 WINEARCH=${1%-*}
    run reg query HKCU # makes it
    clients "$work/nothing.vbs" # an engine registers itself at its first use
    # What a user of Windows has already, but a fresh one of Wine has not.
    for key in CLSID Interface TypeLib; do run reg add "HKCU\\Software\\Classes\\$key" /f; done
    mkdir -p "$drive/users/$(id -un)/AppData/Local/Programs"
    mkdir "$drive/taken"
    echo "another program's" >"$drive/taken/uninstall.exe"
    state >"$work/before"
    refuses 'C:\taken' "$6" # for one user also because it is nobody's own folder
    [ "$6" = /CurrentUser ] || refuses "C:\\users\\$(id -un)\\folder" "$6"
    run "$work/older.exe" /S "${@:6}"
    at=$(dirname "$(find "$drive" -path '*/Tesselwind/uninstall.exe')") at_windows=C:$(echo "${at#"$drive"}" | tr / '\\')
    [ -f "$at/x86/QelPluginAnimationDesigns/Antiguos/Cigüeña.gif" ] || fail "the older version has not been installed"
    run build/windows/tesselwind-*-windows.exe /S "${@:6}"
    [ ! -e "$at/x86/QelPluginAnimationDesigns/Antiguos" ] || fail "the upgrade leaves a file of the older version"
    [ -e "$at/x64" ] || [ "$tree" = x86 ] || fail "the component for 64 bits is missing"
    use
    state >"$work/installed"
    diff "$work/before" "$work/installed" | grep -a '^> \[' >"$work/keys" || true
    ! grep -vF "[$5" "$work/keys" || fail "it writes keys for other users"
    grep -q 'InprocServer32\]' "$work/keys" && grep -q 'Uninstall.Tesselwind\]' "$work/keys" || fail "$(cat "$work/keys")"
    clients "$PWD/tests/windows/inUse.vbs" "$at_windows"
    clients "$PWD/tests/windows/client.vbs"
    run "$at/uninstall.exe" /S
    for second in {1..60}; do [ -e "$at" ] && sleep 1; done # it goes on in a copy of itself
    [ -s "$drive/sitio/build/page.html" ] || fail "the site of the author is gone"
    rm -r "$drive/sitio"
    state >"$work/after"
    diff "$work/before" "$work/after" || fail "removed, it leaves or changes something"
}
test_in win64-all wine64 x64 'system32 syswow64' HKEY_LOCAL_MACHINE /AllUsers
# Wine finds no classes of one user, so there the entries alone are looked at.
test_in win64-one wine64 x64 '' HKEY_CURRENT_USER /CurrentUser
test_in win32-all wine x86 system32 HKEY_LOCAL_MACHINE /AllUsers '/D=C:\Tesselwind'
