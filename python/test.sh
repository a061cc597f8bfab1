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
builds=()
for preset in x64 x64-v3 x64-v4; do
    if [ "$preset" = x64 ] || processor_has_level "${preset#x64-}"; then
        build_preset "$preset" lumcv
        builds+=("x86-64${preset#x64}=$root/build/$preset")
    fi
done
# The program draws the gallery that the one from Python is compared with.
build_preset x64 lumcv_cli
"$python" -B "$root/python/stage.py" "$root/build/python" "${builds[@]}"

cd "$root/build/python"
export PYTHONPATH=$root/build/python PYTHONDONTWRITEBYTECODE=1
"$python" -m mypy --config-file "$root/python/pyproject.toml" --cache-dir "$root/build/python/.mypy" -p lumcv
"$python" -m pytest -q -p no:cacheprovider -c "$root/python/pyproject.toml" --doctest-modules \
    "$root/build/python/lumcv" "$root/python/tests" "$@"
unset PYTHONPATH

# The package as it is installed, with a library that it does not carry.
build_preset x64 lumcv_python
rm -rf "$root/build/python-installed"
cmake --install "$root/build/x64" --component python --prefix "$root/build/python-installed" >/dev/null
(cd "$root/build" && PYTHONPATH=$(echo "$root"/build/python-installed/lib/python3*/dist-packages) \
    LUMCV_LIBRARY=$root/build/x64/liblumcv.so "$python" -c "
import lumcv, numpy
assert 'python-installed' in lumcv.__file__
assert (lumcv.lowpass(numpy.full((4, 4), 9, 'uint8')) == 9).all()")
echo "installation: made and tried"

"$root/scripts/wheel.sh" >"$root/build/wheel.log" 2>&1 || {
    cat "$root/build/wheel.log" >&2
    exit 1
}
echo "wheel: made, installed and tested"
