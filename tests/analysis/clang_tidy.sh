#!/usr/bin/env bash
# clang_tidy.sh CLANG_TIDY SOURCE BUILD: reads each file of the library, and the program, with clang-tidy; fails with any finding. BUILD
# has the compile commands.
set -euo pipefail
clang_tidy=$1
source=$2
build=$3
sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' "$build/compile_commands.json" |
    grep -E "^$source/src/.*\.cpp$|/tools_read_[a-z]*\.dir/Unity/" | sort -u |
    xargs -P2 -n1 "$clang_tidy" --quiet -p "$build"
