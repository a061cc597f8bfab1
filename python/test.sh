#!/usr/bin/env bash
# Tests the Python package: the native builds that the tree has, the types, the examples in the documentation, the tests,
# and the wheel.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=scripts/packages.sh
. "$root/scripts/packages.sh"
need_packages "${build_packages[@]}" python3-cffi python3-pycparser python3-numpy python3-pytest mypy python3-dask \
    python3-distributed python3-zarr python3-pil python3-pip python3-setuptools python3-venv python3-wheel

python=/usr/bin/python3
# The program draws the gallery that the one from Python is compared with.
build_preset native lumcv lumcv_x86-64-v3 lumcv_x86-64-v4 lumcv_cli lumcv_python
"$python" -B "$root/python/stage.py" "$root/build/python" "$root/build/native"

cd "$root/build/python"
export PYTHONPATH=$root/build/python PYTHONDONTWRITEBYTECODE=1
"$python" -m mypy --config-file "$root/python/pyproject.toml" --cache-dir "$root/build/python/.mypy" -p lumcv
"$python" -m pytest -q -p no:cacheprovider -c "$root/python/pyproject.toml" --doctest-modules \
    "$root/build/python/lumcv" "$root/python/tests" "$@"
unset PYTHONPATH

# The package and the libraries as they are installed.
installed=$root/build/python-installed
rm -rf "$installed"
for component in runtime python; do
    cmake --install "$root/build/native" --component "$component" --prefix "$installed" >/dev/null
done
(cd "$root/build" && PYTHONPATH=$(echo "$installed"/lib/python3*/dist-packages) "$python" -c "
import lumcv.raw, numpy
assert lumcv.__file__.startswith('$installed') and lumcv.raw.path.startswith('$installed'), lumcv.raw.path
assert (lumcv.lowpass(numpy.full((4, 4), 9, 'uint8')) == 9).all()
print('installation: made and tried,', lumcv.raw.path)")

"$root/scripts/wheel.sh" >"$root/build/wheel.log" 2>&1 || {
    cat "$root/build/wheel.log" >&2
    exit 1
}
echo "wheel: made, installed and tested"
