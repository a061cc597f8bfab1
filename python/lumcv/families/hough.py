"""Straight lines and segments in binary images."""

import math
from typing import Any, Optional

import numpy

from .._array import FLOAT32, INT32, UINT8, Array, Image, of_image, source
from .._ffi import ffi
from .._library import lib
from .._memory import SIZE, Memo, block, queries
from .._status import Error, check
from .._tiling import whole

_point = ffi.typeof("LumPoint32f*")
_range = ffi.typeof("LumPoint32f[2]")


def _binary(image: Image) -> tuple[Any, int, int, int]:
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    if array.dtype not in (UINT8, numpy.dtype(bool)) or channels != 1:
        raise TypeError(f"lines are found in uint8 or bool with 1 channel, not in {array.dtype} with {channels}")
    return pointer, step, height, width


def _line_scratch(width: int, height: int, rho: float, theta: float, count: int) -> int:
    cell = ffi.new("Lum32s*")
    delta = ffi.new(_point, (rho, theta))[0]
    name = "lumiHoughLineGetSize_8u_C1R"
    status = lib.lumiHoughLineGetSize_8u_C1R(SIZE[width, height], delta, count, cell)
    if status:
        # A warning here says that the size cannot be told.
        raise Error(status, name)
    size: int = cell[0]
    return size


_scratch: Memo[int] = Memo(_line_scratch)


@whole("a line may cross the whole picture")
def hough_lines(
    image: Image,
    threshold: int,
    rho: float = 1.0,
    theta: float = math.pi / 180,
    count: int = 1000,
    limits: Optional[tuple[tuple[float, float], tuple[float, float]]] = None,
) -> Array:
    """The straight lines of a binary image, the strongest first.

    Parameters
    ----------
    image : array of uint8 or bool
        The image; pixels other than 0 vote.
    threshold : int
        Votes that a line exceeds.
    rho, theta : float
        Steps of the distance in pixels and of the angle in radians.
    count : int
        The largest number of lines. Where there are more, there is a warning.
    limits : pair of pairs, optional
        The lowest (rho, theta) and the highest of the lines looked for.

    Returns
    -------
    array of float32, a row (rho, theta) a line
        The points of a line have x cos(theta) + y sin(theta) = rho.

    Examples
    --------
    >>> import lumcv, numpy
    >>> edges = numpy.zeros((20, 20), numpy.uint8)
    >>> edges[7, :] = 255
    >>> lumcv.hough_lines(edges, threshold=15).round(2)
    array([[7.  , 1.55]], dtype=float32)
    """
    pointer, step, height, width = _binary(image)
    scratch = block(_scratch[width, height, rho, theta, count])
    lines = numpy.empty((max(count, 1), 2), FLOAT32)
    places = ffi.cast(_point, ffi.from_buffer("Lum32f[]", lines))
    found = ffi.new("int*")
    delta = ffi.new(_point, (rho, theta))[0]
    size = SIZE[width, height]
    if limits is None:
        name = "lumiHoughLine_8u32f_C1R"
        status = lib.lumiHoughLine_8u32f_C1R(pointer, step, size, delta, threshold, places, count, found, scratch)
    else:
        name = "lumiHoughLine_Region_8u32f_C1R"
        within = ffi.new(_range, [tuple(limits[0]), tuple(limits[1])])
        status = lib.lumiHoughLine_Region_8u32f_C1R(
            pointer, step, size, places, within, count, found, delta, threshold, scratch
        )
    if status:
        check(status, name)
    return lines[: found[0]].copy()


def _angles(width: int, height: int, rho: float, theta: float) -> tuple[Any, Any, int]:
    size, delta = SIZE[width, height], ffi.new(_point, (rho, theta))[0]
    spec, scratch = queries("lumiHoughProbLineGetSize_8u_C1R", size, delta, count=2)
    memory = block(spec)
    state = ffi.cast("LumHoughProbSpec*", memory)
    check(lib.lumiHoughProbLineInit_8u32f_C1R(size, delta, 0, state), "lumiHoughProbLineInit_8u32f_C1R")
    return state, memory, scratch


_specs: Memo[tuple[Any, Any, int]] = Memo(_angles, 64)


@whole("a segment may cross the whole picture")
def hough_segments(
    image: Image,
    threshold: int,
    length: int = 30,
    gap: int = 3,
    rho: float = 1.0,
    theta: float = math.pi / 180,
    count: int = 1000,
) -> Array:
    """The segments of lines of a binary image, by votes of pixels drawn at random; the same ones in each call.

    Parameters
    ----------
    image : array of uint8 or bool
        The image; pixels other than 0 vote.
    threshold : int
        Votes at which a line is followed.
    length : int
        The least length in pixels, in x or in y.
    gap : int
        Missing pixels that a segment bridges.
    rho, theta : float
        Steps of the distance in pixels and of the angle in radians.
    count : int
        The largest number of segments. Where there are more, there is a warning.

    Returns
    -------
    array of int32, a row (x0, y0, x1, y1) a segment

    Examples
    --------
    >>> import lumcv, numpy
    >>> edges = numpy.zeros((20, 40), numpy.uint8)
    >>> edges[5, 2:38] = 255
    >>> segments = lumcv.hough_segments(edges, threshold=10)
    >>> segments.shape, segments[0][1::2]
    ((1, 4), array([5, 5], dtype=int32))
    """
    pointer, step, height, width = _binary(image)
    state, _, scratch = _specs[width, height, rho, theta]
    segments = numpy.empty((max(count, 1), 4), INT32)
    found = ffi.new("int*")
    name = "lumiHoughProbLine_8u32f_C1R"
    places = ffi.from_buffer("Lum32s[]", segments)
    status = lib.lumiHoughProbLine_8u32f_C1R(
        pointer, step, SIZE[width, height], threshold, length, gap, places, count, found, block(scratch), state
    )
    if status:
        check(status, name)
    return segments[: found[0]].copy()
