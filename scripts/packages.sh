# shellcheck shell=bash
# shellcheck disable=SC2034,SC2154
# Sourced by the scripts at the root: what building takes from Debian, and the building itself. `root` is the
# directory of the tree.

# The library, its program and its tests.
build_packages=(g++ g++-multilib cmake ninja-build googletest libcli11-dev libstb-dev nlohmann-json3-dev
    libpng-dev libjpeg62-turbo-dev libpugixml-dev)
# The Windows DLLs, and reading their files.
windows_packages=(g++-mingw-w64-i686 python3-pefile)

# Those of the packages that are not installed.
missing_packages() {
    local name
    for name in "$@"; do
        dpkg-query -W -f '${db:Status-Abbrev}\n' "$name" 2>/dev/null | grep -q '^ii' || echo "$name"
    done
}

# Installs what is missing of the packages; with nothing missing, nothing is asked of the network. Fails with a
# message when it cannot.
need_packages() {
    local missing
    mapfile -t missing < <(missing_packages "$@")
    if [ ${#missing[@]} -eq 0 ]; then return 0; fi
    if [ "$(id -u)" -ne 0 ]; then
        echo "Packages are missing. As root: apt-get install ${missing[*]}" >&2
        return 1
    fi
    echo "Installing ${missing[*]}" >&2
    # The lists here may do even when newer ones cannot be had.
    apt-get update -qq >&2 || echo "The lists of packages could not be updated." >&2
    if ! DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2; then
        echo "These packages could not be installed: ${missing[*]}" >&2
        return 1
    fi
}

# processor_has_level v3|v4: whether this machine runs the builds of that level of x86-64.
processor_has_level() {
    local flag flags="avx2 bmi1 bmi2 fma f16c movbe"
    if [ "$1" = v4 ]; then flags="$flags avx512f avx512bw avx512cd avx512dq avx512vl"; fi
    for flag in $flags; do
        grep -m1 '^flags' /proc/cpuinfo | grep -qw "$flag" || return 1
    done
}

# What a tree finds out about the machine when it is configured, down to the folders of the compiler, holds for the packages that
# are there at that time.
installed_packages() { dpkg-query -W; }

# configure_preset PRESET [OPTION...]: configures, and from the start where the tree was configured with other packages; what the
# tools say is shown only when they fail.
configure_preset() {
    local preset=$1 tree=$root/build/$1 log=$root/build/$1.log fresh=()
    shift
    mkdir -p "$tree"
    if ! installed_packages | cmp -s - "$tree/packages"; then fresh=(--fresh); fi
    if ! (cd "$root" && cmake --preset "$preset" ${fresh[@]+"${fresh[@]}"} "$@") >"$log" 2>&1; then
        cat "$log" >&2
        return 1
    fi
    installed_packages >"$tree/packages"
}

# build_tree PRESET [TARGET...]: builds what is configured, all of it unless targets are named. What the tools say is
# shown only when they fail; on a terminal the build tells its progress.
build_tree() {
    local preset=$1 tree=$root/build/$1 log=$root/build/$1.log
    shift
    if [ -t 2 ]; then
        cmake --build "$tree" ${1:+--target "$@"} >&2
    elif ! cmake --build "$tree" ${1:+--target "$@"} >"$log" 2>&1; then
        cat "$log" >&2
        return 1
    fi
}

# build_preset PRESET [TARGET...]: configures and builds.
build_preset() { configure_preset "$1" && build_tree "$@"; }
