# shellcheck shell=bash
# shellcheck disable=SC2154
# Sourced: a throw-away 32-bit Debian under the build folder, for programs that this machine's own packages cannot run.
# `root` is the directory of the tree, which is seen in there at the same path.

system32=$root/build/system32

# make_system32 PACKAGE...: makes the system if it is not there, and installs the packages in it. Fails with a message
# when it cannot.
make_system32() {
    if [ "$(id -u)" -ne 0 ]; then
        echo "A 32-bit Debian under $system32 can be made by root only." >&2
        return 1
    fi
    if [ ! -e "$system32/complete" ]; then
        need_packages debootstrap || return 1
        rm -rf "$system32"
        mkdir -p "$system32"
        echo "Making a 32-bit Debian under $system32" >&2
        if ! debootstrap --arch=i386 --variant=minbase "$(. /etc/os-release && echo "$VERSION_CODENAME")" \
            "$system32" >"$root/build/system32.log" 2>&1; then
            tail -n 5 "$root/build/system32.log" >&2
            echo "debootstrap could not make a 32-bit Debian." >&2
            return 1
        fi
        touch "$system32/complete"
    fi
    # shellcheck disable=SC2016
    in_system32 sh -c 'for name in "$@"; do dpkg-query -W -f "\${db:Status-Abbrev}" "$name" 2>/dev/null | grep -q ^ii || exit 1; done' \
        sh "$@" && return 0
    cp /etc/resolv.conf "$system32/etc/resolv.conf"
    if ! in_system32 env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "$@" \
        >"$root/build/system32.log" 2>&1; then
        tail -n 5 "$root/build/system32.log" >&2
        echo "These packages could not be installed in the 32-bit Debian: $*" >&2
        return 1
    fi
}

# in_system32 COMMAND...: runs it there, in the current directory if that lies in the tree. What is mounted for it is
# seen by nothing else and goes away with it.
in_system32() {
    mkdir -p "$system32$root"
    # shellcheck disable=SC2016
    unshare --mount sh -c '
        system=$1 root=$2 place=$3
        shift 3
        mount --bind "$root" "$system$root"
        mount -t proc proc "$system/proc"
        mount --rbind /dev "$system/dev"
        exec chroot "$system" sh -c '\''cd "$1" 2>/dev/null || cd /; shift; exec "$@"'\'' sh "$place" "$@"
    ' sh "$system32" "$root" "$PWD" "$@"
}
