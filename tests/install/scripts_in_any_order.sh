#!/bin/bash
# Runs demo.sh, bench.sh and test.sh in every order, each order from a clean tree on a fresh machine. Packages, builds and
# tests have stand-ins, with the one property of the real ones that matters here: a tree keeps what it found out about the
# machine when it was first configured, and has only the targets that could be had then.
#
#     scripts_in_any_order.sh TREE WORK
set -euo pipefail
tree=$1
work=$2
rm -rf "$work"
mkdir -p "$work/bin"

# stand_in NAME: a program of that name, from standard input.
stand_in() {
    { echo '#!/bin/bash'; cat; } >"$work/bin/$1"
    chmod +x "$work/bin/$1"
}

stand_in id <<'END'
echo 0
END
stand_in dpkg-query <<'END'
if [ $# -eq 1 ]; then exec cat "$MACHINE/packages"; fi
grep -qx -e "${*: -1}" "$MACHINE/packages" && echo "ii "
END
stand_in apt-get <<'END'
if [ "$1" = install ]; then
    shift
    for name in "$@"; do
        case "$name" in -*) ;; *:i386) grep -qx i386 "$MACHINE/architectures" || exit 100 ;;& *) echo "$name" >>"$MACHINE/packages" ;; esac
    done
fi
END
stand_in dpkg <<'END'
case "$1" in
--print-foreign-architectures) cat "$MACHINE/architectures" ;;
--add-architecture) echo "$2" >>"$MACHINE/architectures" ;;
esac
END
stand_in cmake <<'END'
case "$1" in
--preset)
    tree=build/$2
    mkdir -p "$tree"
    if [ "${3:-}" = --fresh ] || ! [ -f "$tree/CMakeCache.txt" ]; then cp "$MACHINE/packages" "$tree/CMakeCache.txt"; fi
    grep -qx g++ "$tree/CMakeCache.txt" || { echo "no compiler" >&2; exit 1; }
    ;;
--build)
    tree=$2
    shift 2
    for target in "$@"; do
        package=
        case "$target $tree" in
        lumcv_bench*/s8) package=libbenchmark-dev:i386 ;;
        lumcv_bench*) package=libbenchmark-dev ;;
        docs*) package=doxygen ;;
        esac
        if [ -n "$package" ] && ! grep -qx "$package" "$tree/CMakeCache.txt"; then
            echo "unknown target '$target'" >&2
            exit 1
        fi
    done
    mkdir -p "$tree/bench"
    cp "$STAND_IN_PROGRAM" "$tree/lumcv"
    cp "$STAND_IN_PROGRAM" "$tree/bench/lumcv_bench"
    ;;
esac
END
# Both programs: rows for the benchmark, a folder for the gallery.
stand_in program <<'END'
while [ $# -gt 0 ]; do
    if [ "$1" = -o ]; then mkdir -p "$2" && echo page >"$2/index.html"; fi
    shift
done
printf 'work\tx\tns_px\tms\ncopy\t1.00\t0.020\t0.040\n'
END
for name in ctest clang-format git; do
    stand_in "$name" <<'END'
exit 0
END
done

export STAND_IN_PROGRAM=$work/bin/program
for order in "demo bench test" "demo test bench" "bench demo test" "bench test demo" "test demo bench" "test bench demo"; do
    export MACHINE=$work/machine
    rm -rf "$work/copy" "$MACHINE"
    mkdir -p "$work/copy/bench" "$work/copy/python" "$MACHINE"
    touch "$MACHINE/packages" "$MACHINE/architectures"
    cp -r "$tree"/{demo,bench,test}.sh "$tree/scripts" "$work/copy"
    cp "$tree"/bench/*.awk "$work/copy/bench"
    cp "$work/bin/ctest" "$work/copy/python/test.sh"
    for script in $order; do
        if ! PATH=$work/bin:$PATH "$work/copy/$script.sh" >"$work/log" 2>&1; then
            echo "$script.sh fails in the order $order:"
            cat "$work/log"
            exit 1
        fi
    done
done

# The growth over sizes: one row costs each pixel twice as much on the largest picture, one a quarter more, one less.
stand_in program <<'END'
size=1920x1080
while [ $# -gt 0 ]; do
    if [ "$1" = --size ]; then size=$2; fi
    shift
done
case "$size" in
320x240) ns="0.100 0.100 5.000" ;;
640x480) ns="0.100 0.200 4.000" ;;
1920x1080) ns="0.150 0.200 2.000" ;;
3840x2160) ns="0.200 0.250 1.000" ;;
*) exit 2 ;;
esac
set -- $ns
printf 'work\tx\tns_px\tms\nrises\t1.00\t%s\t0.1\nholds\t1.00\t%s\t0.1\nfalls\t1.00\t%s\t0.1\n' "$1" "$2" "$3"
END
PATH=$work/bin:$PATH "$work/copy/bench.sh" --compare s8 x64 --sizes >"$work/table" 2>"$work/log"
for line in "work 320x240 640x480 1920x1080 3840x2160 growth" "rises 0.100 0.100 0.150 0.200 2.00!" "holds 0.100 0.200 0.200 0.250 1.25" \
    "falls 5.000 4.000 2.000 1.000 0.25"; do
    if [ "$(tr -s ' ' <"$work/table" | grep -cx "$line")" != 2 ]; then
        echo "bench.sh --sizes does not print, once a build: $line"
        cat "$work/table"
        exit 1
    fi
done
grep -qx "x64: 3 rows, 1 of them rise by more than a quarter" "$work/table"
PATH=$work/bin:$PATH "$work/copy/bench.sh" --size 640x480 >"$work/table" 2>"$work/log"
grep -q "^built-in scene, 640 x 480, " "$work/table"
PATH=$work/bin:$PATH "$work/copy/bench.sh" >"$work/table" 2>"$work/log"
grep -q "^built-in scene, 1920 x 1080, " "$work/table"
if PATH=$work/bin:$PATH "$work/copy/bench.sh" --size 7x7 >"$work/log" 2>&1; then
    echo "bench.sh succeeds on a size that the program refuses"
    exit 1
fi

# Calls on a few pixels: those above 60 ns are marked.
stand_in program <<'END'
case " $* " in *" --overhead "*) ;; *) exit 2 ;; esac
printf 'work\tns\nquick\t60.0\nslow\t60.1\n'
END
PATH=$work/bin:$PATH "$work/copy/bench.sh" --compare s8 x64 --overhead >"$work/table" 2>"$work/log"
for line in "work s8 x64" "quick 60.0 60.0" "slow 60.1! 60.1!"; do
    if ! tr -s ' ' <"$work/table" | grep -qx "$line"; then
        echo "bench.sh --overhead does not print: $line"
        cat "$work/table"
        exit 1
    fi
done

# A filter that nothing matches is a failure.
stand_in program <<'END'
exit 1
END
if PATH=$work/bin:$PATH "$work/copy/bench.sh" --benchmark_filter=nomatch >"$work/log" 2>&1; then
    echo "bench.sh succeeds though nothing was measured"
    exit 1
fi
grep -q -e --list "$work/log"
for script in demo bench test; do
    "$work/copy/$script.sh" --help >"$work/log"
    grep -q "^usage: ./$script.sh" "$work/log"
done
