"""The example of a large picture, run small: what it stores and prints is that of the whole."""

import re
import subprocess
import sys

import zarr
from conftest import ROOT

import lumcv


def test_large_picture(tmp_path):
    command = [sys.executable, str(ROOT / "python/examples/large_picture.py"), "--side", "700", "--chunk", "150", str(tmp_path)]
    printed = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    picture, blurred, edges = (zarr.open(str(tmp_path / f"{name}.zarr"), "r")[:] for name in ("picture", "blurred", "edges"))
    assert picture.shape == (700, 700)
    assert (blurred == lumcv.gaussian(picture, 2.0, border="mirror")).all()
    assert (edges == lumcv.canny(blurred, 40, 120)).all()
    told = [int(number) for number in re.findall(r"\d+", printed)]
    assert told[0] == (edges != 0).sum() > 0
    assert told[1] == len(lumcv.fast_corners(blurred, 25)) > 0
    assert told[2] < 1024


def test_gallery_has_the_pixels_of_the_program(tmp_path):
    program = next((path for path in (ROOT / f"build/{preset}/lumcv" for preset in ("x64", "x64-v3", "x64-v4")) if path.exists()), None)
    assert program is not None, "the program has not been built"
    subprocess.run([str(program), "gallery", "-o", str(tmp_path / "program")], check=True, capture_output=True)
    command = [sys.executable, str(ROOT / "python/examples/gallery.py"), str(tmp_path / "program"), str(tmp_path / "python")]
    finished = subprocess.run(command, capture_output=True, text=True)
    assert finished.returncode == 0, finished.stdout + finished.stderr
    assert "other pixels" not in finished.stdout
    assert finished.stdout.count("the program's pixels") == 37
    assert (tmp_path / "python/index.html").read_text().count("<figure>") == 37
