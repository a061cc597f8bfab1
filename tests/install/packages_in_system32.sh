#!/usr/bin/env bash
# Makes the Debian packages of build/s8 and installs them with apt-get in a throw-away 32-bit Debian, where dependencies are
# checked and ldconfig runs as on any 32-bit machine. A host and the program run there; then the packages are removed again.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source=../../scripts/packages.sh
. "$root/scripts/packages.sh"
# shellcheck source=../../scripts/system32.sh
. "$root/scripts/system32.sh"

build=$root/build/s8
work=$build/packages_in_system32
apt=(env DEBIAN_FRONTEND=noninteractive apt-get -y -qq --no-install-recommends)

# quietly COMMAND...: what it says is shown only when it fails.
quietly() {
    if ! "$@" >"$work/log" 2>&1; then
        cat "$work/log" >&2
        echo "failed: $*" >&2
        return 1
    fi
}

# expect_output EXPECTED COMMAND...: a command in the 32-bit Debian, and a line that it prints.
expect_output() {
    local expected=$1
    shift
    in_system32 "$@" >"$work/log"
    if ! grep -qxE "$expected" "$work/log"; then
        cat "$work/log" >&2
        echo "$* did not print $expected" >&2
        return 1
    fi
}

make_system32 || { echo "The i386 packages have not been installed anywhere: there is no 32-bit Debian." >&2; exit 1; }
rm -rf "$work"
mkdir -p "$work"
quietly cpack --config "$build/CPackConfig.cmake" -B "$work/packages"
packages=("$work"/packages/*_i386.deb)
names=()
for package in "${packages[@]}"; do names+=("$(dpkg-deb -f "$package" Package)"); done
if [ "${names[*]}" != "liblumcv-dev liblumcv1 lumcv-tools" ]; then
    echo "The packages are ${names[*]}" >&2
    exit 1
fi
quietly in_system32 "${apt[@]}" install --reinstall "${packages[@]}"
quietly in_system32 dpkg --verify "${names[@]}"

# A host, compiled here with what the packages hold; the system has no compiler. Its loader finds the library by itself.
for package in "${packages[@]}"; do dpkg-deb -x "$package" "$work/content"; done
gcc -m32 -std=c99 -I"$work/content/usr/include" "$root/examples/difference.c" -o "$work/host" \
    -L"$work/content/usr/lib/i386-linux-gnu" -llumcv -Wl,-rpath-link,"$work/content/usr/lib/i386-linux-gnu"
expect_output "   0  30   0  80" "$work/host"

# The program: what it tells of the library, and the distances of the pictures "ABDZ" and "BBBB".
expect_output "lumCV Sprite \(s8\)" lumcv info
expect_output "exports +680" lumcv info
expect_output "library +(/usr)?/lib/i386-linux-gnu/liblumcv\.so\.1" lumcv info
printf 'P5\n4 1\n255\nABDZ' >"$work/a.pgm"
printf 'P5\n4 1\n255\nBBBB' >"$work/b.pgm"
quietly in_system32 lumcv absdiff "$work/a.pgm" "$work/b.pgm" -o "$work/distances.pgm"
printf 'P5\n4 1\n255\n\x01\x00\x02\x18' | cmp - "$work/distances.pgm"

quietly in_system32 "${apt[@]}" purge "${names[@]}"
# The tree itself is seen in there, and logs stay.
if in_system32 find / -xdev \( -path "$root" -o -path /var/log \) -prune -o -name '*lumc*' -print | grep .; then
    echo "left after the removal" >&2
    exit 1
fi
echo "Installed, run and removed: ${names[*]}, i386"
