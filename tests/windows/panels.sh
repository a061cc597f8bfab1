#!/usr/bin/env bash
# The Windows program, under Wine, draws the panels of every family as that of build/s8 does, to the byte.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$root/build/win32/panels
rm -rf "$work"
mkdir -p "$work"
"$root/build/s8/lumcv" gallery --pnm -o "$work/s8" >/dev/null
"$root/tests/windows/wine.sh" "$root/build/win32/lumcv.exe" gallery --pnm -o "$work/win32" >/dev/null
diff -r "$work/s8" "$work/win32"
count=$(find "$work/win32" -name '*.pnm' | wc -l)
if [ "$count" -eq 0 ]; then
    echo "The program has drawn nothing." >&2
    exit 1
fi
echo "The Windows program draws the same $count panels, byte for byte."
