# Sourced by the tests that need a 32-bit Wine, which cannot be installed beside the 64-bit one everywhere: a small system
# of its own, deleted at the end, in which Wine alone runs. The script is in the folder of the sources and has a function
# fail. It needs root's rights, the network, and 3 GB in the folder for temporary files.
. tests/fresh_system.sh

# Makes the system: make_wine_system ARCHITECTURE... (the system's first), and then programs for QEL_WINE_PROGRAM:
# $folder/wine with the 32-bit loader, and $folder/wine64 if the system is an amd64. Beside them is Wine's server.
make_wine_system() {
    make_system "$(. /etc/os-release && echo "$VERSION_CODENAME")" "--arch=$1"
    local packages="wine wine32:i386 fonts-wine" shared
    [ "$1" = i386 ] || packages+=" wine64"
    {
        inside dpkg --add-architecture i386
        inside apt-get update -q
        inside apt-get install -q -y --no-install-recommends $packages
    } >"$folder/log" 2>&1 || fail "$(cat "$folder/log")"

    # The sources and the devices are where they are outside. Nothing is removed while one of them is still there.
    mounted=()
    trap leave_wine_system EXIT
    for shared in "$PWD" /dev /proc; do
        as_root mkdir -p "$root$shared"
        as_root mount --rbind "$shared" "$root$shared"
        mounted+=("$root$shared")
    done
    for program in wine wine64 wineserver; do
        cat >"$folder/$program" <<END_OF_PROGRAM
#!/bin/sh
exec $([ "$(id -u)" -eq 0 ] || echo sudo --preserve-env) chroot "$root" env -C "\$PWD" /usr/lib/wine/$program "\$@"
END_OF_PROGRAM
        chmod +x "$folder/$program"
    done
}

leave_wine_system() {
    local at
    for at in "${mounted[@]}"; do
        as_root umount -l "$at" || return
    done
    as_root rm -rf --one-file-system "$folder"
}
