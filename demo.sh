#!/bin/bash
# Builds the library and its program for 32 bits, and shows what they do with a picture.
set -euo pipefail

usage="usage: ./demo.sh [PICTURE]    a PNG, JPEG, PGM or PPM file; without it, the built-in scene"
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
build_preset s8 lumcv_cli

lumcv=$root/build/s8/lumcv
"$lumcv" info
"$lumcv" gallery "$@" -o "$root/build/gallery"
echo "Open it in a browser: file://$root/build/gallery/index.html"
