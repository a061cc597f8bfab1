#!/bin/bash
# Measures the library, as multiples of a plain copy of the picture's 8-bit plane, and lays the rows beside reference
# times when those are there.
set -euo pipefail

usage="usage: ./bench.sh [--scene FILE.pgm] [--benchmark_filter=REGEX] [more options of Google Benchmark]"
for argument in "$@"; do
    case "$argument" in
    -h | --help)
        echo "$usage"
        exit 0
        ;;
    esac
done

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=scripts/packages.sh
. "$root/scripts/packages.sh"
need_packages "${build_packages[@]}"

# Google Benchmark for 32 bits comes from the other architecture of the same distribution.
benchmark_of_32_bits() {
    if [ -z "$(missing_packages libbenchmark-dev:i386)" ]; then return 0; fi
    if [ "$(id -u)" -eq 0 ] && ! dpkg --print-foreign-architectures | grep -qx i386; then
        dpkg --add-architecture i386
    fi
    need_packages libbenchmark-dev:i386
}

preset=s8
if ! benchmark_of_32_bits; then
    echo "There is no Google Benchmark for 32 bits here: the build for 64 bits is measured instead." >&2
    preset=x64
    need_packages libbenchmark-dev
fi
build_preset "$preset" lumcv_bench

rows=$root/build/$preset/bench.tsv
echo "Measuring the $preset build" >&2
status=0
"$root/build/$preset/bench/lumcv_bench" "$@" >"$rows" || status=$?
if [ $status -ne 0 ]; then exit $status; fi

reference=$root/../shared/bench/reference.tsv
if [ -f "$reference" ]; then
    awk -f "$root/bench/compare.awk" "$reference" "$rows"
else
    awk -f "$root/bench/compare.awk" "$rows"
fi
