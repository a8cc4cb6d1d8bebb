#!/bin/bash
# The Debian package on a fresh system that has nothing but the base: package_test.sh BUILD
# It needs root's rights and the network, and the system that runs it must be a Debian.
set -euo pipefail
fail() { echo "$1" >&2 && exit 1; }
build=$(realpath "$1")
. /etc/os-release
mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' \
    "Codename: $VERSION_CODENAME" | head -n 1)
[ -n "$mirror" ] || fail "apt knows no mirror of Debian $VERSION_CODENAME yet; run apt-get update"
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
folder=$(mktemp -d)
root=$folder/root
trap '"${as_root[@]}" rm -rf --one-file-system "$folder"' EXIT

# Runs a command in the fresh system, with processes of its own there: all end with it.
inside() {
    "${as_root[@]}" unshare --mount --pid --fork --kill-child --root="$root" --mount-proc --wd=/ \
        env DEBIAN_FRONTEND=noninteractive LC_ALL=C "$@"
}

rm -f "$build"/tesselwind_*.deb
(cd "$build" && cpack)
package=$(echo "$build"/tesselwind_*.deb)
"${as_root[@]}" debootstrap --variant=minbase "$VERSION_CODENAME" "$root" "$mirror" >"$folder/log" ||
    fail "$(cat "$folder/log")"
"${as_root[@]}" cp "$package" "$root/tmp/package.deb"
inside apt-get install -q -s /tmp/package.deb >"$folder/recommended"
for name in $(dpkg-deb -f "$package" Recommends | tr -d ,); do
    grep -q "^Inst $name " "$folder/recommended" || fail "recommended, but not to be had: $name"
done
inside apt-get install -q -y --no-install-recommends /tmp/package.deb
inside useradd --create-home autor
inside setpriv --reuid=autor --regid=autor --init-groups env -i HOME=/home/autor PATH=/usr/bin:/bin sh -eux <<'END'
cd && LD_DEBUG=files qelhost info 2>loaded
grep -q /usr/share/qel/classes/ loaded
qelhost check
qelhost init site
echo '<html><body></body></html>' >page.html
qelhost page add site page.html
{
    echo '<pg.plugin uid="QelPluginAnimation" version="1.0"><pg.param name="playmidi" value="0">'
    echo '<pg.param name="image" value="Globo.gif"><pg.param name="imagefolder" value="Fiestas">'
} | qelhost module add site page.html --script -
qelhost build site
cmp site/build/images/*.gif /usr/lib/qel/QelPluginAnimationDesigns/Fiestas/Globo.gif
! qelhost module edit site 1 2>errors
grep 'no hay ninguna pantalla' errors
END
inside apt-get remove -q -y tesselwind
left=$("${as_root[@]}" find "$root" -xdev \( -iname '*qel*' -o -iname '*tesselwind*' \) ! -path "$root/home/*")
[ -z "$left" ] || fail "removed, it leaves: $left"
