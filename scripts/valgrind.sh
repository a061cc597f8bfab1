#!/usr/bin/env bash
# Runs the test programs of the build for x64 under valgrind's memcheck.
set -euo pipefail

usage="usage: scripts/valgrind.sh [--built] [PATTERN]

Builds the library and its tests for x64 and runs the test programs under memcheck, one after another: all of them, or those whose names
match the extended regular expression, such as '^stats[.]'. Prints the seconds that each has taken, and what memcheck or a test
reports; that is also in build/x64/valgrind/. All programs take hours.

  --built  runs the programs that are there, and builds nothing
  --help   this text"
build=true
pattern=.
for argument in "$@"; do
    case "$argument" in
    --built) build=false ;;
    -h | --help)
        echo "$usage"
        exit 0
        ;;
    -*)
        echo "valgrind.sh: unknown option $argument" >&2
        echo "$usage" >&2
        exit 2
        ;;
    *) pattern=$argument ;;
    esac
done

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=scripts/packages.sh
. "$root/scripts/packages.sh"
need_packages "${build_packages[@]}" valgrind
if $build; then build_preset x64; fi

tree=$root/build/x64
mkdir -p "$tree/valgrind"
cd "$tree/tests"
# Tests in which the program is given little memory: memcheck takes of it too, and cannot throw where there is none left.
little_memory=Detect.TheDetectorHoldsNoMoreWindowsThanTheMost
little_memory+=:Program.WhateverMemoryThereIsAPictureIsWrittenOrRefused
failed=false
for program in *_test lumcv_digests; do
    name=${program%_test}
    if [ "$program" = lumcv_digests ]; then name=library.digests; fi
    if ! grep -qE -- "$pattern" <<<"$name"; then continue; fi
    options=()
    arguments=()
    # Memcheck takes the loader's comparison of a path with $ORIGIN for one past its end; with this it needs not follow such a path.
    environment=("LD_LIBRARY_PATH=$tree/tests/substitute:$tree")
    case $name in
    library.digests) arguments=(--check "$root/tests/digest") ;;
    tools.*)
        # The program that these run is held to it too, and finds its own libraries.
        options=(--trace-children=yes '--trace-children-skip=*chrom*' --vgdb=no)
        arguments=(--gtest_filter="-$little_memory")
        environment=(-u LD_LIBRARY_PATH)
        ;;
    esac
    SECONDS=0
    if env "${environment[@]}" valgrind -q --error-exitcode=99 "${options[@]}" "./$program" "${arguments[@]}" \
        >"$tree/valgrind/$name.log" 2>&1; then
        echo "$name: $SECONDS s"
    else
        failed=true
        echo "$name: $SECONDS s, failed"
        grep -E '^==|Failure|FAILED' "$tree/valgrind/$name.log" || true
    fi
done

if $failed; then
    echo "valgrind.sh: there are findings" >&2
    exit 1
fi
