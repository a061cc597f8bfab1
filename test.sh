#!/usr/bin/env bash
# Builds lumCV in all its forms and runs every test. On a fresh Debian machine, as root, it installs what is missing.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$root"
# shellcheck source=scripts/packages.sh
. "$root/scripts/packages.sh"

need_packages "${build_packages[@]}" pkg-config clang clang-format nlohmann-json3-dev libbenchmark-dev doxygen

echo "== formatting"
git ls-files '*.h' '*.cpp' '*.c' | xargs clang-format --dry-run --Werror

for preset in s8 x64 s8-asan; do
    echo "== $preset: build"
    build_preset "$preset"
done

echo "== reference"
build_preset s8 docs

# All three sets are run, whatever the first of them says; the last lines are ctest's summary of each.
failed=""
for preset in s8 x64 s8-asan; do
    echo "== $preset: test"
    ctest --preset "$preset" || failed="$failed $preset"
done
if [ -n "$failed" ]; then
    echo "failed:$failed" >&2
    exit 1
fi
