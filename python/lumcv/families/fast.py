"""Corners by the segment test."""

from typing import Any, Optional

import numpy

from .._array import UINT8, Array, Image, of_image, source, target
from .._documentation import parameters_of
from .._ffi import ffi
from .._library import lib
from .._members import Members
from .._memory import SIZE, Memo, block, query
from .._status import check
from .._tiling import Tiling, tiled, whole

_members = Members("lumiFastN_{s}_C{n}R")
_orientation, _suppression, _corners, _score = 1, 2, 4, 32

#: A corner: its place, 1 for dark and 0 for bright, its orientation (-1 without) and its score (-1 without).
CORNER = numpy.dtype([("x", "i4"), ("y", "i4"), ("type", "i4"), ("bin", "i4"), ("angle", "f4"), ("score", "f4")])


class _Search:
    """The parameters of a search in images of one size. Runs only read it."""

    def __init__(self, width: int, height: int, threshold: float, radius: int, arc: int, bins: int, flags: int) -> None:
        size = SIZE[width, height]
        self.block = block(query("lumiFastNGetSize", size, radius, arc, bins, flags, 1, 1))
        self.spec = ffi.cast("LumFastNSpec*", self.block)
        check(
            lib.lumiFastNInit(size, radius, arc, bins, flags, threshold, 1, 1, self.spec),
            "lumiFastNInit",
        )
        self.scratch = query("lumiFastNGetBufferSize", self.spec, size)


_searches: Memo[_Search] = Memo(_Search, 64)
_origin = ffi.new("LumPoint*")[0]


def _run(
    image: Image,
    threshold: float,
    radius: int,
    arc: int,
    suppress: bool,
    bins: int,
    out: Optional[tuple[Array, Array]],
) -> tuple[Array, Array, int, _Search]:
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, _, name = _members[array.dtype, channels]
    flags = _corners | _score | (_suppression if suppress else 0) | (_orientation if bins else 0)
    search = _searches[width, height, threshold, radius, arc, bins, flags]
    marks, scores = (None, None) if out is None else out
    marks, first, first_step = target(marks, (height, width), UINT8)
    scores, second, second_step = target(scores, (height, width), UINT8)
    count = ffi.new("Lum32s*")
    scratch = block(search.scratch)
    size = SIZE[width, height]
    status = call(pointer, step, first, first_step, second, second_step, count, _origin, size, search.spec, scratch)
    if status:
        check(status, name, 4)
    return marks, scores, count[0], search


def _tiling(radius: int = 3, suppress: bool = True, **keywords: Any) -> Tiling:
    return Tiling((0, 0, 0, 0), radius + 1 if suppress else radius)


@whole("it makes a list; fast_marks marks the corners of each part")
def fast_corners(
    image: Image,
    threshold: float = 20,
    radius: int = 3,
    arc: int = 9,
    suppress: bool = True,
    bins: int = 0,
) -> Array:
    """The corners of an image: pixels with an arc around them that is all brighter or all darker.

    Parameters
    ----------
    image : array of uint8
        The image.
    threshold : float
        The difference of tones that each pixel of the arc exceeds.
    radius : {1, 2, 3, 5, 7, 9}
        Radius of the circle: 8, 12, 16, 28, 40 or 52 pixels.
    arc : int
        Contiguous pixels that make a corner: more than half of the circle.
    suppress : bool
        Whether only the local maxima of the score stay.
    bins : int
        Number of orientations, 1 to 64; 0 for none.

    Returns
    -------
    structured array, an element a corner, row by row
        With the fields `x`, `y`, `type` (1 dark, 0 bright), `bin`, `angle` in degrees, and `score`.

    Examples
    --------
    >>> import lumcv, numpy
    >>> dot = numpy.full((9, 9), 10, numpy.uint8)
    >>> dot[4, 4] = 200
    >>> lumcv.fast_corners(dot)[["x", "y", "score"]]
    array([(4, 4, 190.)],
          dtype={'names': ['x', 'y', 'score'], 'formats': ['<i4', '<i4', '<f4'], 'offsets': [0, 4, 20], 'itemsize': 24})
    """
    marks, scores, count, search = _run(image, threshold, radius, arc, suppress, bins, None)
    corners = numpy.empty(count, CORNER)
    found = ffi.new("Lum32s*")
    height, width = marks.shape
    status = lib.lumiFastN2DToVec_8u(
        ffi.from_buffer("Lum8u[]", marks),
        width,
        ffi.from_buffer("Lum8u[]", scores),
        width,
        ffi.cast("LumFastNCorner*", ffi.from_buffer(corners)) if count else ffi.new("LumFastNCorner*"),
        SIZE[width, height],
        count,
        found,
        search.spec,
    )
    check(status, "lumiFastN2DToVec_8u")
    return corners


@tiled(_tiling)
@parameters_of(fast_corners)
def fast_marks(
    image: Image,
    threshold: float = 20,
    radius: int = 3,
    arc: int = 9,
    suppress: bool = True,
    bins: int = 0,
    out: Optional[tuple[Array, Array]] = None,
) -> tuple[Array, Array]:
    """Marks the corners of an image: pixels with an arc around them that is all brighter or all darker.

    Parameters are those of `fast_corners`, and

    Parameters
    ----------
    out : tuple of two arrays, optional
        Take the results.

    Returns
    -------
    marks : array of uint8
        64 at a bright corner, 128 at a dark one, plus its orientation; 0 elsewhere.
    scores : array of uint8
        The largest threshold, plus one, at which the pixel still is a corner.

    Examples
    --------
    >>> import lumcv, numpy
    >>> dot = numpy.full((9, 9), 10, numpy.uint8)
    >>> dot[4, 4] = 200
    >>> marks, scores = lumcv.fast_marks(dot)
    >>> int(marks[4, 4]), int(scores[4, 4])
    (128, 190)
    """
    marks, scores, _, _ = _run(image, threshold, radius, arc, suppress, bins, out)
    return marks, scores
