"""The documents' examples in Python run as they are printed."""

import re

import numpy
import pytest
import zarr
from conftest import ROOT, smooth

import lumcv


def examples(document):
    """The indented blocks that are Python."""
    blocks = re.findall(r"(?:^    .*\n|^\n(?=    ))+", (ROOT / document).read_text(), re.M)
    found = []
    for block in blocks:
        lines = "".join(line[4:] if line.strip() else line for line in block.splitlines(keepends=True))
        try:
            found.append(compile(lines, document, "exec"))
        except SyntaxError:
            continue
    return [code for code in found if "lumcv" in code.co_names]


@pytest.mark.parametrize("document, count", [("docs/python.md", 3), ("README.md", 1)])
def test_examples_of_documents_run(document, count, tmp_path, monkeypatch):
    picture = smooth((180, 300))
    numpy.save(tmp_path / "picture.npy", picture)
    zarr.save(str(tmp_path / "picture.zarr"), picture)
    monkeypatch.chdir(tmp_path)
    names = {"picture": picture}
    blocks = examples(document)
    assert len(blocks) == count
    for code in blocks:
        exec(code, names)
    expected = lumcv.canny(lumcv.gaussian(picture, 2.0), low=40, high=120)
    if document == "README.md":
        assert (names["edges"] == expected).all()
    else:
        # The last example stores the edges; the one before it blurs a region.
        assert (zarr.open(str(tmp_path / "edges.zarr"), "r")[:] == expected).all()
        assert (names["part"] == lumcv.gaussian(picture, 2.0)[100:164, 200:264]).all()
