#!/bin/bash
# Measures the library and lays the rows beside reference times when those are there.
set -euo pipefail

usage="usage: ./bench.sh [--compare BUILD...] [--size WxH | --sizes | --overhead] [--scene FILE.pgm] [--list] [--benchmark_filter=REGEX]
                  [more options of Google Benchmark]

Measures the s8 build, or with --compare each of the builds named (s8 x64 x64-v3 x64-v4), a column each. A row's name is that of a
function without lumi. --list prints the rows and measures nothing. As root it adds what is missing: for 32 bits that is the i386
architecture of the same distribution, from which Google Benchmark comes.

The picture has 1920 x 1080 pixels, or with --size those of WxH, from 320x240 to 4096x4096: the middle of the same picture, which goes
on beyond its sides in mirrored copies. --sizes measures 320x240, 640x480, 1920x1080 and 3840x2160 one after the other and prints
nanoseconds a pixel, a column a size and a table a build; rows whose pixels cost more in the last by over a quarter than in the second
are marked with !.

--overhead measures what calls cost on a region of 8 x 8, where there is hardly any work: nanoseconds a call, a column a build; those
above 60 are marked with !."

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=scripts/packages.sh
. "$root/scripts/packages.sh"

presets=()
options=()
picture="built-in scene"
list=false
size=1920x1080
growth=false
overhead=false
while [ $# -gt 0 ]; do
    case "$1" in
    -h | --help)
        echo "$usage"
        exit 0
        ;;
    --list) list=true ;;
    --size)
        if [ $# -lt 2 ]; then
            echo "bench.sh: --size takes a width and a height, as in 640x480" >&2
            exit 2
        fi
        size=$2
        shift
        ;;
    --sizes) growth=true ;;
    --overhead)
        overhead=true
        options+=("$1")
        ;;
    --compare)
        while [ $# -gt 1 ] && [ "${2#-}" = "$2" ]; do
            case "$2" in
            s8 | x64 | x64-v3 | x64-v4) presets+=("$2") ;;
            *)
                echo "bench.sh: no build is named $2" >&2
                exit 2
                ;;
            esac
            shift
        done
        if [ ${#presets[@]} -eq 0 ]; then
            echo "bench.sh: --compare takes the names of builds" >&2
            exit 2
        fi
        ;;
    --scene)
        if [ $# -lt 2 ]; then
            echo "bench.sh: --scene takes a file" >&2
            exit 2
        fi
        picture=$2
        options+=("$1" "$2")
        shift
        ;;
    *) options+=("$1") ;;
    esac
    shift
done
if [ ${#presets[@]} -eq 0 ]; then presets=(s8); fi
sizes=("$size")
if $growth; then sizes=(320x240 640x480 1920x1080 3840x2160); fi

need_packages "${build_packages[@]}"

# Google Benchmark for 32 bits comes from the other architecture of the same distribution.
benchmark_of_32_bits() {
    if [ -z "$(missing_packages libbenchmark-dev:i386)" ]; then return 0; fi
    if [ "$(id -u)" -eq 0 ] && ! dpkg --print-foreign-architectures | grep -qx i386; then
        echo "Adding the i386 architecture, for Google Benchmark of 32 bits" >&2
        dpkg --add-architecture i386
    fi
    need_packages libbenchmark-dev:i386
}

measured=()
files=()
for preset in "${presets[@]}"; do
    if [ "$preset" = s8 ]; then
        if ! benchmark_of_32_bits; then
            if [ ${#presets[@]} -gt 1 ]; then
                echo "There is no Google Benchmark for 32 bits here: s8 is left out." >&2
                continue
            fi
            echo "There is no Google Benchmark for 32 bits here: the build for 64 bits is measured instead." >&2
            preset=x64
        fi
    fi
    if [ "$preset" != s8 ]; then need_packages libbenchmark-dev; fi
    level=${preset#x64-}
    if [ "$level" != "$preset" ] && ! processor_has_level "$level"; then
        echo "This processor does not have the vectors of x86-64-$level: $preset is left out." >&2
        continue
    fi
    build_preset "$preset" lumcv_bench
    if $list; then
        "$root/build/$preset/bench/lumcv_bench" ${options[@]+"${options[@]}"} --benchmark_list_tests | sed 's#/.*##' | sort -u
        exit 0
    fi
    for size in "${sizes[@]}"; do
        echo "Measuring the $preset build on $size" >&2
        file=$root/build/$preset/bench-$size.tsv
        if ! "$root/build/$preset/bench/lumcv_bench" --size "$size" ${options[@]+"${options[@]}"} >"$file"; then
            echo "Nothing was measured in the $preset build; ./bench.sh --list has the names of the rows." >&2
            exit 1
        fi
        files+=("$file")
    done
    measured+=("$preset")
    if $growth; then
        awk -f "$root/bench/growth.awk" -v build="$preset" -v picture="$picture" -v sizes="${sizes[*]}" "${files[@]}"
        files=()
    fi
done
if [ ${#measured[@]} -eq 0 ]; then exit 1; fi
if $growth; then exit 0; fi
if $overhead; then
    awk -f "$root/bench/overhead.awk" -v builds="${measured[*]}" "${files[@]}"
    exit 0
fi

# The reference has times on 1920 x 1080 only.
reference=$root/../shared/bench/machines.tsv
if [ -f "$reference" ] && [ "$size" = 1920x1080 ]; then files=("$reference" "${files[@]}"); fi
awk -f "$root/bench/compare.awk" -v builds="${measured[*]}" -v picture="$picture" -v size="${size/x/ x }" "${files[@]}"
