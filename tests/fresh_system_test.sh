#!/bin/bash
# ./demo and ./check --linux in a fresh system that has nothing but the base: fresh_system_test.sh RELEASE
# RELEASE is the code name of a Debian. It needs root's rights, the network, 10 GB in the folder for temporary files, and
# half an hour on two cores.
set -euo pipefail
fail() { echo "$1" >&2 && exit 1; }
cd "$(dirname "$0")/.."
. tests/fresh_system.sh
make_system "$1"

# The sources as they are now, with the changes that are not committed.
as_root mkdir "$root/sources"
git ls-files -z --cached --others --exclude-standard | xargs -0 sh -c 'for f; do [ ! -e "$f" ] || printf "%s\0" "$f"; done' sh |
    tar -c --null -T - | as_root tar -x -C "$root/sources" --no-same-owner
as_root mount --rbind /dev "$root/dev"
trap 'as_root umount -l "$root/dev"; as_root rm -rf --one-file-system "$folder"' EXIT

inside /sources/demo
# The system is one without a name, and the sources are moved after the first build.
as_root mv "$root/sources" "$root/moved"
as_root ln -s ../../moved/demo "$root/usr/bin/sample"
inside sample
[ -s "$root/moved/build/demo/build/index.html" ] || fail "after a move, ./demo makes no site"
inside sh -ec 'apt-get install -q -y --no-install-recommends git >/dev/null && cd /moved && git init -q && git add .'
inside /moved/check --linux
