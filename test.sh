#!/usr/bin/env bash
# Builds lumCV in all its forms and runs every test. On a fresh Debian machine, as root, it installs what is missing.
set -euo pipefail
cd "$(dirname "$0")"
. scripts/packages.sh

need_packages g++-multilib cmake ninja-build googletest pkg-config clang clang-format libcli11-dev libstb-dev \
    nlohmann-json3-dev libbenchmark-dev doxygen

echo "== formatting"
git ls-files '*.h' '*.cpp' '*.c' | xargs clang-format --dry-run --Werror

for preset in s8 x64 s8-asan; do
    echo "== $preset: build"
    cmake --preset "$preset" --log-level=WARNING >/dev/null
    cmake --build --preset "$preset" -- --quiet
done

echo "== reference"
cmake --build --preset s8 --target docs -- --quiet

# All three sets are run, whatever the first of them says; the last lines are ctest's summary of each.
failed=""
for preset in s8 x64 s8-asan; do
    echo "== $preset: test"
    ctest --preset "$preset" || failed="$failed $preset"
done
if [ -n "$failed" ]; then
    echo "failed:$failed"
    exit 1
fi
