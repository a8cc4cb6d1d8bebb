# Sourced by the tests that need a fresh Debian: make_system NAME makes one in $root, below the temporary $folder, which
# goes when the script ends. The script has a function fail.
as_root() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }
folder=$(mktemp -d)
root=$folder/root
trap 'as_root rm -rf --one-file-system "$folder"' EXIT

make_system() { # code name of the release, options of debootstrap
    mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' 'Component: main' |
        grep -v security | head -n 1)
    [ -n "$mirror" ] || fail "apt knows no mirror of Debian yet; run apt-get update"
    as_root debootstrap --variant=minbase "${@:2}" "$1" "$root" "$mirror" >"$folder/log" || fail "$(cat "$folder/log")"
    printf '#!/bin/sh\nexit 101\n' | as_root tee "$root/usr/sbin/policy-rc.d" >"$folder/log" # no services
    as_root chmod +x "$root/usr/sbin/policy-rc.d"
}

# Runs a command in the fresh system, with processes of its own there: all end with it. Of the caller's environment it
# gets only the way to the network.
inside() {
    as_root unshare --mount --pid --fork --kill-child --root="$root" --mount-proc --wd=/ \
        env -i HOME=/root PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        http_proxy="${http_proxy-}" https_proxy="${https_proxy-}" no_proxy="${no_proxy-}" \
        DEBIAN_FRONTEND=noninteractive LC_ALL=C "$@"
}
