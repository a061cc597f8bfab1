#!/bin/bash
# Builds the library and its program for 64 and for 32 bits, and shows what they do with a picture.
set -euo pipefail

usage="usage: ./demo.sh [PICTURE]

Draws build/gallery/index.html with the native program, and checks that the 32-bit one gives the same bytes on the built-in
scene. PICTURE is a PNG, JPEG, PNM or PAM file; without it, the built-in scene is shown."
case "${1:-}" in
-h | --help)
    echo "$usage"
    exit 0
    ;;
esac
if [ $# -gt 1 ]; then
    echo "$usage" >&2
    exit 2
fi

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=scripts/packages.sh
. "$root/scripts/packages.sh"
need_packages "${build_packages[@]}"
build_preset x64 lumcv_cli
build_preset s8 lumcv_cli

"$root/build/x64/lumcv" info
"$root/build/x64/lumcv" gallery "$@" -o "$root/build/gallery"

# The panels alone: the 32-bit program may be one that writes no PNG.
for preset in x64 s8; do
    rm -rf "$root/build/panels-$preset"
    "$root/build/$preset/lumcv" gallery --pnm -o "$root/build/panels-$preset" >/dev/null
done
if ! diff -r "$root/build/panels-x64" "$root/build/panels-s8" >&2; then
    echo "demo.sh: the 32-bit program's panels differ" >&2
    exit 1
fi
echo "The 32-bit program draws the same $(find "$root/build/panels-s8" -name '*.pnm' | wc -l) panels, byte for byte."
echo "Open it in a browser: file://$root/build/gallery/index.html"
