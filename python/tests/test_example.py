"""The example of a large picture, run small: what it stores and prints is that of the whole."""

import re
import subprocess
import sys

import numpy
import zarr
from conftest import ROOT
from PIL import Image

import lumcv


def test_large_picture(tmp_path):
    command = [
        sys.executable,
        str(ROOT / "python/examples/large_picture.py"),
        "--side",
        "700",
        "--chunk",
        "150",
        str(tmp_path),
    ]
    printed = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    picture, blurred, edges = (
        zarr.open(str(tmp_path / f"{name}.zarr"), "r")[:] for name in ("picture", "blurred", "edges")
    )
    assert picture.shape == (700, 700)
    assert (blurred == lumcv.gaussian(picture, 2.0, border="mirror")).all()
    assert (edges == lumcv.canny(blurred, 40, 120)).all()
    told = [int(number) for number in re.findall(r"\d+", printed)]
    assert told[0] == (edges != 0).sum() > 0
    assert told[1] == len(lumcv.fast_corners(blurred, 25)) > 0
    assert told[2] < 1024


def gallery_names():
    program = "import sys; sys.path.insert(0, sys.argv[1]); from panels import SECTIONS\n"
    program += "for section in SECTIONS:\n    for panel in section.panels: print(panel.name)"
    listed = subprocess.run(
        [sys.executable, "-c", program, str(ROOT / "python/examples")], capture_output=True, text=True, check=True
    )
    return listed.stdout.split()


def test_gallery_has_the_pixels_of_the_program(tmp_path):
    program = ROOT / "build/native/lumcv"
    subprocess.run([str(program), "gallery", "-o", str(tmp_path / "program")], check=True, capture_output=True)
    command = [
        sys.executable,
        str(ROOT / "python/examples/gallery.py"),
        str(tmp_path / "program"),
        str(tmp_path / "python"),
    ]
    finished = subprocess.run(command, capture_output=True, text=True)
    assert finished.returncode == 0, finished.stdout + finished.stderr
    names = {path.name for path in (tmp_path / "program").glob("*.png")}
    assert {path.name for path in (tmp_path / "python").glob("*.png")} == names
    for name in names:
        drawn, expected = (numpy.asarray(Image.open(tmp_path / each / name)) for each in ("python", "program"))
        assert numpy.array_equal(drawn, expected), name
    page = (tmp_path / "python/index.html").read_text()
    assert set(re.findall(r'<img src="([^"]+)"', page)) == names
    assert f"{len(names)} pictures drawn" in page and "other pixels" not in page


def test_gallery_tells_which_pixels_differ(tmp_path):
    """Other strokes of a panel than the program's: the page says so, and the exit status."""
    program = tmp_path / "program"
    program.mkdir()
    rows, columns = numpy.mgrid[:48, :64]
    picture = (rows * 5 + columns * 3 % 7 * 9).astype("uint8")
    for name in gallery_names():
        Image.fromarray(picture).save(program / f"{name}.png")
    command = [sys.executable, str(ROOT / "python/examples/gallery.py"), str(program), str(tmp_path / "python")]
    finished = subprocess.run(command, capture_output=True, text=True)
    assert finished.returncode == 1, finished.stdout + finished.stderr
    lines = dict(re.findall(r"^(\S+) +(.*)$", finished.stdout, re.M))
    assert lines["picture"] == "the program's pixels"
    assert lines["integral"] == "other pixels than the program's"
    assert "other pixels" in (tmp_path / "python/index.html").read_text()
