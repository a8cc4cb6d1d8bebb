#!/bin/bash
# The tests of the preset windows32 under a 32-bit Wine, which cannot be installed beside the 64-bit one: it is in a small
# system of its own, which is deleted at the end. Only Wine runs there. It needs root's rights, the network, and 2 GB in
# the folder for temporary files.
set -euo pipefail
fail() { echo "$1" >&2 && exit 1; }
cd "$(dirname "$0")/../.."
. tests/fresh_system.sh
make_system "$(. /etc/os-release && echo "$VERSION_CODENAME")" --arch=i386
inside apt-get install -q -y --no-install-recommends wine wine32 fonts-wine >"$folder/log" 2>&1 || fail "$(cat "$folder/log")"

# The sources and the devices are where they are outside. Nothing is removed while one of them is still there.
mounted=()
leave() {
    for at in "${mounted[@]}"; do
        as_root umount -l "$at" || return
    done
    as_root rm -rf --one-file-system "$folder"
}
trap leave EXIT
for shared in "$PWD" /dev /proc; do
    as_root mkdir -p "$root$shared"
    as_root mount --rbind "$shared" "$root$shared"
    mounted+=("$root$shared")
done
cat >"$folder/wine" <<END_OF_PROGRAM
#!/bin/sh
exec $([ "$(id -u)" -eq 0 ] || echo sudo --preserve-env) chroot "$root" env -C "\$PWD" /usr/lib/wine/wine "\$@"
END_OF_PROGRAM
chmod +x "$folder/wine"

rm -rf build/wine32
mkdir -p build/wine32/temporary # for the tests that start others, which see the same files there
TMPDIR=$PWD/build/wine32/temporary QEL_WINE=$PWD/build/wine32/system QEL_WINE_PROGRAM=$folder/wine WINEARCH=win32 ctest --preset windows32
