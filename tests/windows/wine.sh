#!/usr/bin/env bash
# Runs a 32-bit Windows program under Wine, without a display: wine.sh PROGRAM ARGUMENT...
# wine.sh --prepare makes what is needed for it, or says why it cannot be had.
#
# This machine's own Wine is taken where it runs 32-bit programs. Its 32-bit packages cannot always be installed beside
# the 64-bit ones; then the Wine of a throw-away 32-bit Debian does it.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source=../../scripts/packages.sh
. "$root/scripts/packages.sh"
# shellcheck source=../../scripts/system32.sh
. "$root/scripts/system32.sh"

own_wine=/usr/lib/wine/wine
prefix=$root/build/wine-prefix

if [ "${1-}" = --prepare ]; then
    if [ -x "$own_wine" ]; then exit 0; fi
    if make_system32 wine wine32; then exit 0; fi
    echo "No Wine that runs 32-bit programs can be had: nothing of win32 has been run." >&2
    exit 1
fi

if [ ! -x "$own_wine" ] && [ ! -e "$system32/complete" ]; then
    echo "There is no Wine to run $1: tests/windows/wine.sh --prepare makes one." >&2
    exit 1
fi
in_wine=(env -u DISPLAY "WINEPREFIX=$prefix" WINEDEBUG=-all,err+module WINEARCH=win32
    "WINEDLLOVERRIDES=mscoree=;mshtml=;winedbg.exe=")
if [ -x "$own_wine" ]; then
    exec "${in_wine[@]}" "$own_wine" "$@"
fi
in_system32 "${in_wine[@]}" wine "$@"
