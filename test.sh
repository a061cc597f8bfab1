#!/usr/bin/env bash
# Builds lumCV in all its forms and runs every test. On a fresh Debian machine, as root, it installs what is missing.
set -euo pipefail

usage="usage: ./test.sh [--quick | --windows]

Builds lumCV and runs its tests: 32 bits (s8), 64 bits with vectors of 16, 32 and 64 bytes (x64, x64-v3, x64-v4), what is
installed and packaged of them (native, s8), and 32 bits under the address and undefined-behaviour sanitizers (s8-asan). A build that
the processor cannot run is skipped and named. The Windows DLLs (win32) are built, and their files are read. Each build stays in its
folder below build/, and is only brought up to date by the next run.

  --quick     the 32-bit library only, held to its contract as a whole: exports, digests, checks of arguments, regions, tiles,
              threads; from nothing in under four minutes on two cores
  --windows   the Windows build only, its tests run under Wine; then the i386 Debian packages (s8), installed and run in a
              throw-away 32-bit Debian
  --help      this text

One build alone: cmake --preset s8 && cmake --build build/s8 && ctest --preset s8. One family of it: ctest --preset s8 -R stats.norm"
quick=false
windows=false
for argument in "$@"; do
    case "$argument" in
    --quick) quick=true ;;
    --windows) windows=true ;;
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

need_packages "${build_packages[@]}" pkg-config clang libclang-rt-dev clang-format clang-tidy cppcheck libbenchmark-dev doxygen ccache lintian dpkg-dev fakeroot \
    python3-pycparser chromium

if $windows; then
    need_packages "${windows_packages[@]}"
    tests/windows/wine.sh --prepare
    echo "== win32: build"
    build_preset win32
    echo "== s8: build of what is packaged"
    build_preset s8 lumcv lumcore lumcv_cli
    # Both are run, whatever the first of them says.
    failed=""
    echo "== s8: packages in a 32-bit Debian"
    tests/install/packages_in_system32.sh || failed="$failed packages"
    echo "== win32: the program"
    tests/windows/panels.sh || failed="$failed panels"
    echo "== win32: test"
    ctest --preset win32 || failed="$failed win32"
    if [ -n "$failed" ]; then
        echo "failed:$failed" >&2
        exit 1
    fi
    exit
fi

# What the tests of installing build, and the levels of the native build, are compilations of the other builds once more. The cache
# goes by the dependencies that the compiler lists, so what is new is not preprocessed before it is compiled.
export CMAKE_C_COMPILER_LAUNCHER=${CMAKE_C_COMPILER_LAUNCHER-ccache} CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
export CCACHE_DIR=${CCACHE_DIR:-$root/build/ccache} CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS:-pch_defines,time_macros}
export CCACHE_DEPEND=${CCACHE_DEPEND:-1}

echo "== formatting"
git ls-files '*.h' '*.cpp' '*.c' | xargs clang-format --dry-run --Werror

if $quick; then
    echo "== s8: build"
    build_preset s8 tests_of_the_whole
    echo "== s8: test"
    exec ctest --preset s8 -R '^(library|contract)[.]'
fi

presets=(s8 x64)
for level in v3 v4; do
    if processor_has_level "$level"; then
        presets+=("x64-$level")
    else
        echo "== x64-$level: skipped, this processor does not have the vectors of x86-64-$level"
    fi
done
presets+=(native s8-asan)

for preset in "${presets[@]}"; do
    echo "== $preset: build"
    # Builds of one pointer width differ in their library: what sees public headers only is compiled once for all of them.
    case "$preset" in
    s8-asan) configure_preset "$preset" -DLUMCV_TEST_PROGRAMS="$root/build/s8" ;;
    x64) configure_preset "$preset" -DLUMCV_BENCH=OFF ;;
    x64-v*) configure_preset "$preset" -DLUMCV_TEST_PROGRAMS="$root/build/x64" -DLUMCV_TOOLS=OFF -DLUMCV_BENCH=OFF ;;
    *) configure_preset "$preset" ;;
    esac
    build_tree "$preset"
done

echo "== win32: build"
need_packages "${windows_packages[@]}"
build_preset win32 lumcv lumcore lumcv_cli

echo "== reference"
build_preset s8 docs

# All sets are run, whatever the first of them says; the last lines are ctest's summary of each.
failed=""
for preset in "${presets[@]}"; do
    echo "== $preset: test"
    ctest --preset "$preset" || failed="$failed $preset"
done
echo "== win32: the files of the DLLs"
ctest --preset win32 -R '^windows.dll_files$' || failed="$failed win32"
echo "== Python"
python/test.sh || failed="$failed python"
if [ -n "$failed" ]; then
    echo "failed:$failed" >&2
    exit 1
fi
