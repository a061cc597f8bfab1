#!/bin/bash
# The README's first program, compiled by the README's own command against the copy that `cmake --install` puts in place. The
# prefix is a scratch folder instead of /usr/local; what ldconfig and pkg-config's own list of folders do there is said here by
# LD_LIBRARY_PATH and PKG_CONFIG_PATH.
#
#     quick_start.sh TREE BUILD LIBDIR WORK BITS
set -euo pipefail
tree=$1
build=$2
libraries=$3
work=$4
bits=$5
rm -rf "$work"
mkdir -p "$work"

# The list of files that a real installation may have left stays as it is.
manifest=$build/install_manifest.txt
if [ -f "$manifest" ]; then mv "$manifest" "$work/kept"; fi
cmake --install "$build" --prefix "$work/prefix" >"$work/log"
rm "$manifest"
if [ -f "$work/kept" ]; then mv "$work/kept" "$manifest"; fi

awk '/^```/ { code = $0 == "```c"; next } code' "$tree/README.md" >"$work/hello.c"
# The command, with the assignment of the line before it where there is one.
command=$(grep -B1 -E "^    gcc .*# $bits bits$" "$tree/README.md" | grep -E "^    (gcc|[a-z]+=)" | sed "s| *# .*||; s|/usr/local|$work/prefix|g")
if [ -z "$command" ]; then
    echo "the README has no command for $bits bits"
    exit 1
fi
cd "$work"
export LD_LIBRARY_PATH=$work/prefix/$libraries
PKG_CONFIG_PATH=$work/prefix/$libraries/pkgconfig bash -euo pipefail -c "$command"
if [ "$(./a.out)" != "0 5 10 0" ]; then
    echo "hello says: $(./a.out)"
    exit 1
fi
