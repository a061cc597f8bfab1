"""Canny's edges of pictures in parts: ridges are found part by part, and followed across the seams between parts."""

from typing import Any, Iterable, NamedTuple

import numpy

from ._array import INT32, UINT8, Array, Image
from ._tiling import Tiling, tiled
from .families.canny import canny
from .families.fill import label


def _tiling(size: int = 3, **keywords: Any) -> Tiling:
    # Magnitudes outside of a region count as 0, so a part is run larger by the neighbours of its ridges.
    reach = size // 2
    return Tiling((reach, reach, reach, reach), 1)


@tiled(_tiling)
def ridges(image: Image, low: float, high: float, size: int = 3, **keywords: Any) -> tuple[Array, Array]:
    """The ridges of the gradient above each of two thresholds, of which the first contain the second."""
    return canny(image, low, low, size=size, **keywords), canny(image, high, high, size=size, **keywords)


class Seams(NamedTuple):
    """What a part tells of its connected ridges: their labels along its four sides, and those that are edges already."""

    top: Array
    bottom: Array
    left: Array
    right: Array
    strong: Array


def seams_of(weak: Array, strong: Array) -> Seams:
    """The seams of a part, whose ridges have labels from 1 on."""
    labels, _ = label(numpy.ascontiguousarray(weak))
    found = numpy.unique(labels[strong != 0])
    return Seams(labels[0].copy(), labels[-1].copy(), labels[:, 0].copy(), labels[:, -1].copy(), found)


def edges_of(weak: Array, strong: Array, joined: Array) -> Array:
    """The edges of a part: ridges with a strong pixel, and those that others join to one."""
    labels, count = label(numpy.ascontiguousarray(weak))
    chosen = numpy.zeros(count + 1, UINT8)
    chosen[labels[strong != 0]] = 255
    chosen[joined] = 255
    chosen[0] = 0
    edges: Array = chosen[labels]
    return edges


class _Sets:
    """Labels that belong together, as trees."""

    def __init__(self) -> None:
        self.above: dict[int, int] = {}

    def root(self, member: int) -> int:
        path = []
        while self.above.get(member, member) != member:
            path.append(member)
            member = self.above[member]
        for each in path:
            self.above[each] = member
        return member

    def join(self, a: int, b: int) -> None:
        self.above.setdefault(a, a)
        self.above.setdefault(b, b)
        self.above[self.root(a)] = self.root(b)


def _touching(first: Array, second: Array) -> Iterable[tuple[int, int]]:
    """Labels on the two sides of a seam that touch, straight or at a corner."""
    pairs = []
    for a, b in ((first, second), (first[1:], second[:-1]), (first[:-1], second[1:])):
        both = (a != 0) & (b != 0)
        pairs.append(numpy.stack([a[both], b[both]], axis=1))
    return (tuple(pair) for pair in numpy.unique(numpy.concatenate(pairs), axis=0).tolist())


def joined_labels(parts: list[list[Seams]]) -> list[list[Array]]:
    """For each part of a grid the labels that are edges by way of another part."""
    # A label of any part is a number of its own: that of its part, and that in the part.
    def whole(line: Array, i: int, j: int) -> Array:
        own = line.astype(numpy.int64)
        return numpy.where(own != 0, own + ((i * len(parts[0]) + j) << 32), 0)

    def across(i: int, side: str) -> Array:
        return numpy.concatenate([whole(getattr(part, side), i, j) for j, part in enumerate(parts[i])])

    def down(j: int, side: str) -> Array:
        return numpy.concatenate([whole(getattr(line[j], side), i, j) for i, line in enumerate(parts)])

    sets = _Sets()
    for i in range(len(parts) - 1):
        for a, b in _touching(across(i, "bottom"), across(i + 1, "top")):
            sets.join(a, b)
    for j in range(len(parts[0]) - 1):
        for a, b in _touching(down(j, "right"), down(j + 1, "left")):
            sets.join(a, b)
    strong = {
        sets.root(number)
        for i, line in enumerate(parts)
        for j, part in enumerate(line)
        for number in whole(part.strong, i, j).tolist()
    }
    grid: list[list[list[int]]] = [[[] for _ in line] for line in parts]
    for number in list(sets.above):
        if sets.root(number) in strong:
            i, j = divmod(number >> 32, len(parts[0]))
            grid[i][j].append(number & 0xFFFFFFFF)
    return [[numpy.array(each, INT32) for each in line] for line in grid]
