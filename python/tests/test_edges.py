"""Canny's edges of pictures in parts are those of the whole."""

import dask
import dask.array
import numpy
import pytest
from conftest import picture, smooth

import lumcv
import lumcv.dask
import lumcv.tiles

SHAPE = (61, 83)


def winding():
    """A band that winds through the whole picture, bright at one end and ever fainter."""
    image = numpy.full((64, 64), 20, "uint8")
    tone = 250.0
    for turn, y in enumerate(range(4, 60, 12)):
        columns = range(4, 60) if turn % 2 == 0 else range(59, 3, -1)
        for x in columns:
            tone = max(tone * 0.985, 60)
            image[y : y + 5, x] = tone
        if y + 12 < 60:
            side = columns[-5:]
            image[y : y + 17, min(side) : max(side) + 1] = tone
    return image


PICTURES = {"smooth": smooth(SHAPE), "grain": picture(SHAPE, "uint8"), "winding": winding(), "flat": numpy.zeros(SHAPE, "uint8")}


@pytest.mark.parametrize("name", PICTURES)
@pytest.mark.parametrize("keywords", [{}, {"size": 5, "norm": "l1"}, {"filter": "scharr", "border": "constant", "border_value": 200}])
@pytest.mark.parametrize("low, high", [(20, 300), (60, 700), (0, 100)])
def test_edges_in_parts(name, keywords, low, high):
    image = PICTURES[name]
    whole = lumcv.canny(image, low, high, **keywords)
    for tile in ((16, 16), (7, 40), (100, 9), (1, 30)):
        assert (lumcv.tiles.canny(image, low, high, tile=tile, workers=2, **keywords) == whole).all()
    with dask.config.set(scheduler="synchronous"):
        for chunks in (17, (40, 9)):
            chunked = dask.array.from_array(image, chunks=chunks)
            edges = lumcv.dask.canny(chunked, low, high, **keywords)
            assert edges.chunks == chunked.chunks and (edges.compute() == whole).all()


def test_winding_edge_is_followed_through_many_parts():
    image = winding()
    whole = lumcv.canny(image, 20, 500)
    alone = numpy.zeros_like(whole)
    for y in range(0, 64, 16):
        for x in range(0, 64, 16):
            alone[y : y + 16, x : x + 16] = lumcv.canny(image[y : y + 16, x : x + 16], 20, 500)
    assert (whole == 255).sum() > (alone == 255).sum() + 100
    assert (lumcv.tiles.canny(image, 20, 500, tile=16) == whole).all()


def test_result_is_written_into_out():
    image, out = smooth(SHAPE), numpy.zeros(SHAPE, "uint8")
    assert lumcv.tiles.canny(image, 20, 300, tile=20, out=out) is out
    assert (out == lumcv.canny(image, 20, 300)).all()
    with pytest.raises(ValueError, match="not the picture itself"):
        lumcv.tiles.canny(image, 20, 300, out=image)


def test_refusals():
    with pytest.raises(lumcv.Error):
        lumcv.dask.canny(dask.array.zeros((9, 9), dtype="uint8"), -1, 2)
    with pytest.raises(TypeError, match="these would do"):
        lumcv.dask.canny(dask.array.zeros((9, 9), dtype="float32"), 1, 2)
