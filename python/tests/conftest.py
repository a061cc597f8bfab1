"""Pictures and raw calls that the tests share."""

import pathlib

import numpy
import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]


def picture(shape, dtype, seed=1):
    """A picture of every tone that its type holds, with smooth parts and grain."""
    generator = numpy.random.default_rng(seed)
    kind = numpy.dtype(dtype)
    if kind.kind == "f":
        return (generator.standard_normal(shape) * 50).astype(kind)
    limits = numpy.iinfo(kind)
    return generator.integers(limits.min, limits.max, shape, kind, endpoint=True)


def smooth(shape, dtype="uint8", seed=1):
    """A picture whose neighbours are alike, with edges and corners."""
    generator = numpy.random.default_rng(seed)
    y, x = numpy.mgrid[: shape[0], : shape[1]]
    tones = 120 + 60 * numpy.sin(x / 7.0) + 40 * numpy.cos(y / 5.0 + x / 11.0)
    for _ in range(6):
        top, left = generator.integers(0, shape[0]), generator.integers(0, shape[1])
        tones[top : top + 9, left : left + 13] += generator.integers(-80, 80)
    tones += generator.integers(-6, 7, tones.shape)
    return numpy.clip(tones, 0, 255).astype(dtype)


def strided(array):
    """The same elements as a view of a larger array, whose rows have a gap between them."""
    larger = numpy.zeros((array.shape[0] + 3, array.shape[1] + 5, *array.shape[2:]), array.dtype)
    view = larger[1:-2, 2:-3]
    view[...] = array
    return view


def padded(array, border, margins, value=0):
    """A picture with what lies outside of it."""
    if isinstance(margins, int):
        margins = (margins,) * 4
    above, below, left, right = margins
    width = ((above, below), (left, right), *((0, 0),) * (array.ndim - 2))
    modes = {"replicate": "edge", "mirror": "reflect", "constant": "constant"}
    keywords = {"constant_values": value} if border == "constant" else {}
    return numpy.pad(array, width, modes[border], **keywords)


@pytest.fixture
def scene():
    return smooth((70, 90))
