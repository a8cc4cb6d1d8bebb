#!/bin/bash
# The tests of the preset windows32 under a 32-bit Wine. wine_system.sh says what it needs.
set -euo pipefail
fail() { echo "$1" >&2 && exit 1; }
cd "$(dirname "$0")/../.."
. tests/windows/wine_system.sh
make_wine_system i386

rm -rf build/wine32
mkdir -p build/wine32/temporary # for the tests that start others, which see the same files there
TMPDIR=$PWD/build/wine32/temporary QEL_WINE=$PWD/build/wine32/system QEL_WINE_PROGRAM=$folder/wine WINEARCH=win32 ctest --preset windows32
