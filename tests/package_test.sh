#!/bin/bash
# The Debian packages, in a fresh system that has nothing but the base: package_test.sh BUILD
# It needs root's rights and the network, and the system that runs it must be a Debian.
set -euo pipefail
fail() { echo "$1" >&2 && exit 1; }
build=$(realpath "$1")
sources=$(realpath "$(dirname "$0")/..")
. "$sources/tests/fresh_system.sh"
make_system "$(. /etc/os-release && echo "$VERSION_CODENAME")"

# In a locale that knows no accents they are made as in any other, to the byte.
make_packages() { # locale folder
    rm -f "$build"/tesselwind*.deb
    (cd "$build" && LC_ALL=$1 cpack >"$folder/log" 2>&1) || fail "$(cat "$folder/log")"
    mkdir "$folder/$2"
    cp "$build"/tesselwind*.deb "$folder/$2"
}
make_packages C once
sleep 2 # until files have other times
make_packages C.UTF-8 twice
diff -r "$folder/once" "$folder/twice" || fail "made twice, the packages differ"
lintian --fail-on error "$build"/tesselwind*.deb

main=$(echo "$build"/tesselwind_*.deb) window=$(echo "$build"/tesselwind-window_*.deb)
development=$(echo "$build"/tesselwind-dev_*.deb)
readelf -d "$build/stage/qelhost" | grep -q 'Flags:.* NOW PIE' || fail "qelhost is not hardened"
as_root cp "$build"/tesselwind*.deb "$root/tmp"
inside sh -c 'apt-get install -q -s /tmp/*.deb' >"$folder/recommended"
for name in $(dpkg-deb -f "$main" Recommends | sed 's/([^)]*)//g'; dpkg-deb -f "$window" Recommends); do
    grep -q "^Inst ${name%,} " "$folder/recommended" || fail "recommended, but not to be had: $name"
done

# A server that builds pages.
install() { inside apt-get install -q -y --no-install-recommends "/tmp/$(basename "$1")"; }
install "$main"
! inside dpkg-query -W -f '${Package}\n' | grep -i '^libqt' || fail "the host alone installs a toolkit"
inside useradd --create-home autor
as_author() { inside setpriv --reuid=autor --regid=autor --init-groups env -i HOME=/home/autor PATH=/usr/bin:/bin sh -eux; }
as_author <<'END'
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
grep QelPluginAnimationWindow.so errors
END

# An author's machine, and one of who writes a host.
install "$window"
as_author <<'END'
cd && ! qelhost module edit site 1 2>errors
grep 'no hay ninguna pantalla' errors
END
install "$development"
inside apt-get install -q -y --no-install-recommends gcc libc6-dev pkg-config
"$sources/tools/extract-code" "$sources/docs/host-guide.md" c | as_root tee "$root/home/autor/host.c" >"$folder/host.c"
{
    echo 'cd'
    sed -n 's/^    \(cc .*pkg-config.*\)$/\1/p' "$sources/docs/host-guide.md"
    echo 'mkdir pages && ./host pages/'
    echo 'cmp pages/qelspr1.gif /usr/lib/qel/QelPluginAnimationDesigns/Fiestas/Globo.gif'
} | as_author

inside apt-get remove -q -y tesselwind tesselwind-window tesselwind-dev
left=$(as_root find "$root" -xdev \( -iname '*qel*' -o -iname '*tesselwind*' \) ! -path "$root/home/*" ! -path "$root/tmp/*")
[ -z "$left" ] || fail "removed, they leave: $left"
