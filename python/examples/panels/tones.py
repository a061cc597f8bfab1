"""From one kind of picture to another: grey and colour, other elements, and 8 bits for the eye."""

from typing import Any

import numpy

Picture = Any

SCALE = numpy.array([[36, 10, 66], [62, 48, 132], [38, 110, 142], [34, 164, 132], [130, 208, 82], [250, 232, 50]])
CONTOUR_LEVELS = 24


def grey_of(picture: Picture) -> Picture:
    if picture.ndim == 2:
        return picture
    return ((picture.astype(numpy.int64) @ numpy.array([19595, 38470, 7471]) + 32768) >> 16).astype("uint8")


def colour_of(picture: Picture) -> Picture:
    return picture if picture.ndim == 3 else numpy.repeat(picture[:, :, None], 3, axis=2)


def shifted(picture: Picture, dx: int, dy: int) -> Picture:
    """The picture moved to the right and downward, its edge repeated."""
    height, width = picture.shape[:2]
    rows, columns = numpy.clip(numpy.arange(height) - dy, 0, None), numpy.clip(numpy.arange(width) - dx, 0, None)
    return numpy.ascontiguousarray(picture[rows][:, columns])


def scaled(plane: Picture, least: Any = None, largest: Any = None) -> Picture:
    least = float(plane.min()) if least is None else least
    largest = float(plane.max()) if largest is None else largest
    factor = 0.0 if largest == least else 255.0 / (largest - least)
    return numpy.clip((plane.astype(float) - least) * factor + 0.5, 0, 255).astype("uint8")


def signed_roots(plane: Picture) -> Picture:
    """Signed values as their roots, 0 in middle grey."""
    roots = numpy.copysign(numpy.sqrt(numpy.abs(plane.astype(float))), plane)
    reach = float(numpy.sqrt(max(-float(plane.min()), float(plane.max()))))
    return scaled(roots, -reach, reach)


def false_colours(grey: Picture) -> Picture:
    left = numpy.minimum(grey.astype(int) // 51, 4)
    weight = (grey - left * 51)[..., None]
    return ((SCALE[left] * (51 - weight) + SCALE[left + 1] * weight) // 51).astype("uint8")


def with_contours(plane: Picture) -> Picture:
    """The plane in false colours, with a dark line wherever it passes one of the levels."""
    picture = false_colours(scaled(plane))
    least, largest = float(plane.min()), float(plane.max())
    level = ((plane.astype(float) - least) / ((largest - least) / CONTOUR_LEVELS if largest > least else 1.0)).astype(
        int
    )
    passed = (level[:-1, :-1] != level[:-1, 1:]) | (level[:-1, :-1] != level[1:, :-1])
    picture[:-1, :-1][passed] = (picture[:-1, :-1][passed].astype(int) * 2 // 5).astype("uint8")
    return picture


def _covered(count: int, side: int) -> tuple[Any, Any, Any, Any]:
    """Which pixels of a side each of `count` equal parts covers, and how much of its ends."""
    length = side / count
    start = numpy.arange(count) * length
    end = numpy.minimum(numpy.arange(1, count + 1) * length, side)
    first = numpy.minimum(start.astype(int), side - 1)
    last = numpy.clip(end.astype(int), first, side - 1)
    of_first = (numpy.minimum(first + 1, end) - start).astype("float32")
    of_last = numpy.where(last == first, 0, end - last).astype("float32")
    return first, last, of_first, of_last


def _areas(rows: Picture, count: int, ends_first: bool) -> Picture:
    """The means of `count` equal parts of the rows of float32, added up in the order in which the program does."""
    first, last, of_first, of_last = (part[:, None] for part in _covered(count, len(rows)))
    total = rows[first[:, 0]] * of_first
    if ends_first:
        total = total + rows[last[:, 0]] * of_last
    for i in range(1, int((last - first).max()) + (0 if ends_first else 1)):
        place = first + i
        share = numpy.where(place < last, numpy.float32(1), numpy.where(place == last, of_last, numpy.float32(0)))
        if ends_first:
            share = numpy.where(place < last, numpy.float32(1), numpy.float32(0))
        total = total + rows[numpy.minimum(place[:, 0], len(rows) - 1)] * share
    return total / (of_first + of_last + numpy.maximum(last - first - 1, 0).astype("float32"))


def shrunk(grey: Picture, width: int, height: int) -> Picture:
    """The picture in fewer columns and rows: each pixel is the mean of the area that it covers."""
    narrow = _areas(numpy.ascontiguousarray(grey.T).astype("float32"), width, True).T
    means = _areas(numpy.ascontiguousarray(narrow), height, False)
    return numpy.clip(means + numpy.float32(0.5), 0, 255).astype("uint8")
