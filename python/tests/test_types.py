"""The type hints as a host sees them that is checked strictly."""

import os
import subprocess
import sys

import pytest

import lumcv

HOST = """
from typing import Any
import numpy
import lumcv
import lumcv.dask
import lumcv.tiles
from lumcv import raw

image: numpy.ndarray[Any, numpy.dtype[Any]] = numpy.zeros((20, 20), numpy.uint8)
reveal_type(lumcv.gaussian(image, sigma=1.0, border="mirror"))
reveal_type(lumcv.gaussian(lumcv.Region(image, 1, 1, 4, 4), 1))
reveal_type(lumcv.Gaussian(1.0).apply(image))
reveal_type(lumcv.flood_fill(image, (0, 0), 1).area)
lumcv.tiles.map(lumcv.gaussian, image, sigma=1)
raw.lumiAbsDiff_8u_C1R
try:
    lumcv.canny(image, 3, 1)
except lumcv.Error as error:
    reveal_type(error.argument)
lumcv.gaussian(image, sigma="wide")
lumcv.gaussian(image, 1, brder="mirror")
"""


def test_strict_hosts(tmp_path):
    pytest.importorskip("mypy")
    (tmp_path / "host.py").write_text(HOST)
    command = [sys.executable, "-m", "mypy", "--strict", "--follow-imports=silent", "host.py"]
    # What is known of NumPy's types is kept beside the package.
    folder = os.path.dirname(os.path.dirname(lumcv.__file__))
    command += ["--cache-dir", os.path.join(folder, ".mypy-hosts")]
    paths = {**os.environ, "MYPYPATH": folder}
    told = subprocess.run(command, cwd=tmp_path, env=paths, capture_output=True, text=True).stdout
    array = "numpy.ndarray[Any, numpy.dtype[Any]]"
    lines = [line.split(": ", 1)[1] for line in told.splitlines() if line.startswith("host.py")]
    assert lines == [
        *[f'note: Revealed type is "{array}"'] * 3,
        'note: Revealed type is "builtins.int"',
        'note: Revealed type is "builtins.str"',
        'error: Argument "sigma" to "gaussian" has incompatible type "str"; expected "float"  [arg-type]',
        'error: Unexpected keyword argument "brder" for "gaussian"; did you mean "border"?  [call-arg]',
    ], told


def test_all_names_are_exported():
    modules = {"dask", "families", "raw", "tiles"}
    assert set(lumcv.__all__) == {name for name in vars(lumcv) if not name.startswith("_")} - modules
