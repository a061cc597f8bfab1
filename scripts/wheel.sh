#!/usr/bin/env bash
# Makes a wheel of the Python package with the native builds inside, and tests it in a fresh virtual environment.
set -euo pipefail

usage="usage: scripts/wheel.sh [--no-test]

Builds the library for each level of 64-bit x86 and writes build/wheel/lumcv-VERSION-py3-none-PLATFORM.whl. Nothing is taken
from a network: setuptools and wheel are those of the system's Python.

  --no-test  makes the wheel only
  --help     this text"
test=true
for argument in "$@"; do
    case "$argument" in
    --no-test) test=false ;;
    -h | --help)
        echo "$usage"
        exit 0
        ;;
    *)
        echo "wheel.sh: unknown option $argument" >&2
        echo "$usage" >&2
        exit 2
        ;;
    esac
done

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=scripts/packages.sh
. "$root/scripts/packages.sh"
need_packages "${build_packages[@]}" python3-cffi python3-pycparser python3-numpy python3-pip python3-setuptools python3-venv \
    python3-wheel python3-pytest

for preset in x64 x64-v3 x64-v4; do build_preset "$preset" lumcv; done

python=/usr/bin/python3
tree=$root/build/wheel/tree
rm -rf "$root/build/wheel"
mkdir -p "$tree"
"$python" -B "$root/python/stage.py" "$tree" \
    x86-64="$root/build/x64" x86-64-v3="$root/build/x64-v3" x86-64-v4="$root/build/x64-v4"
(cd "$tree" && "$python" -m pip wheel --quiet --no-build-isolation --no-deps --no-index -w "$root/build/wheel" .)
wheel=$(echo "$root"/build/wheel/lumcv-*.whl)
echo "$wheel"

if $test; then
    # What the package needs comes from the system; the package itself only from the wheel.
    environment=$root/build/wheel/environment
    "$python" -m venv --system-site-packages "$environment"
    "$environment/bin/python" -m pip install --quiet --no-index --no-deps "$wheel"
    cd "$root/build/wheel"
    "$environment/bin/python" -c "
import lumcv.raw
assert lumcv.__file__.startswith('$environment'), lumcv.__file__
assert lumcv.raw.path.startswith('$environment'), lumcv.raw.path
print(lumcv.raw.path)"
    "$environment/bin/python" -m pytest -q -p no:cacheprovider -c "$root/python/pyproject.toml" \
        "$root/python/tests/test_raw.py" "$root/python/tests/test_statistics.py"
fi
