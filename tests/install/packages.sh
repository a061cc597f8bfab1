#!/bin/bash
# Makes the Debian packages of a build, lets lintian judge them, installs them below a scratch root with the package database of
# this machine, so that dpkg checks what they depend on, runs a host and the program from there, and removes them again.
#
#     packages.sh BUILD WORK MAJOR-VERSION "COMPILER AND FLAGS"
set -euo pipefail
build=$1
work=$2
library=liblumcv$3
read -ra compiler <<<"$4"
tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
if [ "$(id -u)" -ne 0 ]; then exec fakeroot bash "$0" "$@"; fi

rm -rf "$work"
mkdir -p "$work/packages"
cpack --config "$build/CPackConfig.cmake" -B "$work/packages" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
packages=("$work"/packages/*.deb)
architecture=$(dpkg-deb -f "${packages[0]}" Architecture)
for name in "$library" liblumcv-dev lumcv-tools; do
    ls "$work/packages/${name}_"*"_$architecture.deb" >"$work/log" || { echo "no package $name"; exit 1; }
done
for name in "$library" liblumcv-dev; do
    if [ "$(dpkg-deb -f "$work/packages/${name}_"*.deb Multi-Arch)" != same ]; then
        echo "$name excludes its like of another architecture"
        exit 1
    fi
done
lintian --fail-on error --allow-root "${packages[@]}"

# dpkg below another root: its database is a copy of this machine's, its files go to the scratch root alone.
root=$work/root
mkdir -p "$root/var/lib/dpkg"/{info,updates,triggers}
cp /var/lib/dpkg/status "$root/var/lib/dpkg/status"
cp /var/lib/dpkg/arch "$root/var/lib/dpkg/" 2>"$work/log" || dpkg --print-architecture >"$root/var/lib/dpkg/arch"
scratch_dpkg() { dpkg --root="$root" --force-not-root --force-script-chrootless "$@" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }; }
grep -qx "$architecture" "$root/var/lib/dpkg/arch" || scratch_dpkg --add-architecture "$architecture"
# A machine that only compiles for 32 bits has no 32-bit packages to depend on.
force=()
if [ -z "$(dpkg-query -W -f '${Version}' "libc6:$architecture" 2>"$work/log")" ]; then
    echo "The dependencies of the $architecture packages are not checked: this machine has no libc6:$architecture."
    force=(--force-depends)
fi
scratch_dpkg "${force[@]}" --install "${packages[@]}"

# From there: a host is compiled and run, and so is the program.
folder=$(dirname "$(find "$root/usr/lib" -maxdepth 2 -name "liblumcv.so.$3")")
"${compiler[@]}" -std=c99 -I"$root/usr/include" "$tree/examples/difference.c" -o "$work/host" -L"$folder" -llumcv \
    -Wl,-rpath-link,"$folder"
LD_LIBRARY_PATH=$folder "$work/host" >"$work/log"
grep -q '^   0  30   0  80$' "$work/log"
LD_LIBRARY_PATH=$folder "$root/usr/bin/lumcv" info >"$work/log"
grep -q '^lumCV Sprite' "$work/log"

# In the system's prefix nothing says where to look for libraries.
while read -r file; do
    if readelf -d "$file" | grep -E 'RPATH|RUNPATH'; then
        echo "$file has a run path"
        exit 1
    fi
done < <(find "$folder" "$root/usr/bin" -type f -name '*lum*')

scratch_dpkg --purge lumcv-tools "liblumcv-dev:$architecture" "$library:$architecture"
if find "$root" -name '*lum*' ! -path '*/var/lib/dpkg/*' | grep .; then
    echo "left after the removal"
    exit 1
fi
