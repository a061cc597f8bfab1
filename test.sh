#!/usr/bin/env bash
# Builds lumCV in all its forms and runs every test. On a fresh Debian machine, as root, it installs what is missing.
set -euo pipefail

usage="usage: ./test.sh [--quick]

Builds lumCV and runs its tests: 32 bits (s8), 64 bits with vectors of 16, 32 and 64 bytes (x64, x64-v3, x64-v4), and 32 bits
under the address and undefined-behaviour sanitizers (s8-asan). A build that the processor cannot run is skipped and named.

  --quick   the 32-bit build only
  --help    this text

One family alone: ctest --preset s8 -R stats.norm"
quick=false
for argument in "$@"; do
    case "$argument" in
    --quick) quick=true ;;
    -h | --help)
        echo "$usage"
        exit 0
        ;;
    *)
        echo "test.sh: unknown option $argument" >&2
        echo "$usage" >&2
        exit 2
        ;;
    esac
done

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$root"
# shellcheck source=scripts/packages.sh
. "$root/scripts/packages.sh"

need_packages "${build_packages[@]}" pkg-config clang clang-format nlohmann-json3-dev libbenchmark-dev doxygen

if $quick; then
    presets=(s8)
else
    presets=(s8 x64)
    for level in v3 v4; do
        if processor_has_level "$level"; then
            presets+=("x64-$level")
        else
            echo "== x64-$level: skipped, this processor does not have the vectors of x86-64-$level"
        fi
    done
    presets+=(s8-asan)
fi

echo "== formatting"
git ls-files '*.h' '*.cpp' '*.c' | xargs clang-format --dry-run --Werror

for preset in "${presets[@]}"; do
    echo "== $preset: build"
    # The native builds differ in their library: tests that see public headers only are compiled once for all of them.
    case "$preset" in
    x64-v*) configure_preset "$preset" -DLUMCV_TEST_PROGRAMS="$root/build/x64" ;;
    esac
    build_preset "$preset"
done

echo "== reference"
build_preset s8 docs

# All sets are run, whatever the first of them says; the last lines are ctest's summary of each.
failed=""
for preset in "${presets[@]}"; do
    echo "== $preset: test"
    ctest --preset "$preset" || failed="$failed $preset"
done
if [ -n "$failed" ]; then
    echo "failed:$failed" >&2
    exit 1
fi
