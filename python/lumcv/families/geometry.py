"""Lens correction and the pixels along a line."""

from typing import Optional

import numpy

from .._array import FLOAT32, Array, Image, of_image, source, target
from .._ffi import ffi
from .._library import lib
from .._members import Members
from .._memory import SIZE, Memo, block, query
from .._status import check
from .._tiling import whole

_radial = Members("lumiUndistortRadial_{s}_C{n}R")
_line = Members("lumiSampleLine_{s}_C{n}R")
_scratch: Memo[int] = Memo(lambda width, height: query("lumiUndistortGetSize", SIZE[width, height]))
_elsewhere = "a corrected pixel may come from anywhere in the picture"


@whole(_elsewhere)
def undistort(
    image: Image,
    focal: tuple[float, float],
    centre: tuple[float, float],
    k1: float,
    k2: float = 0.0,
    out: Optional[Array] = None,
) -> Array:
    """Corrects the radial distortion of a lens.

    Parameters
    ----------
    image : array of uint8, uint16 or float32, of 1 or 3 channels
        The picture.
    focal : pair of float
        Focal lengths along x and y, in pixels; neither is 0.
    centre : pair of float
        Optical centre (x, y), in pixels.
    k1, k2 : float
        Radial coefficients.
    out : array, optional
        Takes the result. Pixels that come from outside the picture keep what it holds; without `out` they are 0.

    Returns
    -------
    array like the picture

    Examples
    --------
    >>> import lumcv, numpy
    >>> picture = numpy.arange(16, dtype=numpy.uint8).reshape(4, 4)
    >>> lumcv.undistort(picture, focal=(4, 4), centre=(2, 2), k1=0)
    array([[ 0,  1,  2,  0],
           [ 4,  5,  6,  0],
           [ 8,  9, 10,  0],
           [ 0,  0,  0,  0]], dtype=uint8)
    """
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, dtype, name = _radial[array.dtype, channels]
    if out is None:
        out = numpy.zeros(array.shape, dtype)
    out, result, result_step = target(out, array.shape, dtype)
    scratch = block(_scratch[width, height])
    status = call(pointer, step, result, result_step, SIZE[width, height], *focal, *centre, k1, k2, scratch)
    if status:
        check(status, name)
    return out


@whole(_elsewhere)
def undistort_map(
    shape: tuple[int, int],
    focal: tuple[float, float],
    centre: tuple[float, float],
    k1: float,
    k2: float = 0.0,
    p1: float = 0.0,
    p2: float = 0.0,
    out: Optional[tuple[Array, Array]] = None,
) -> tuple[Array, Array]:
    """For each pixel of a corrected picture its place in the distorted one.

    Parameters
    ----------
    shape : pair of int
        Height and width.
    focal : pair of float
        Focal lengths along x and y, in pixels; neither is 0.
    centre : pair of float
        Optical centre (x, y), in pixels.
    k1, k2 : float
        Radial coefficients.
    p1, p2 : float
        Tangential coefficients.
    out : tuple of two arrays, optional
        Take the results.

    Returns
    -------
    x, y : arrays of float32

    Examples
    --------
    >>> import lumcv
    >>> x, y = lumcv.undistort_map((2, 3), focal=(4, 4), centre=(1, 1), k1=0)
    >>> x
    array([[0., 1., 2.],
           [0., 1., 2.]], dtype=float32)
    """
    height, width = shape
    x, y = (None, None) if out is None else out
    x, x_pointer, x_step = target(x, (height, width), FLOAT32)
    y, y_pointer, y_step = target(y, (height, width), FLOAT32)
    size = SIZE[width, height]
    coefficients = (*focal, *centre, k1, k2, p1, p2)
    name = "lumiCreateMapCameraUndistort_32f_C1R"
    status = lib.lumiCreateMapCameraUndistort_32f_C1R(
        x_pointer, x_step, y_pointer, y_step, size, *coefficients, block(_scratch[width, height])
    )
    if status:
        check(status, name)
    return x, y


@whole("a line may cross the whole picture")
def sample_line(image: Image, start: tuple[int, int], end: tuple[int, int], out: Optional[Array] = None) -> Array:
    """The pixels along a straight line.

    Parameters
    ----------
    image : array of uint8, uint16 or float32, of 1 or 3 channels
        The image.
    start, end : pairs of int
        (x, y) of the first pixel and of the last one.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of one dimension, of two with channels
        As many pixels as the longer of the two extents has.

    Examples
    --------
    >>> import lumcv, numpy
    >>> picture = numpy.arange(25, dtype=numpy.uint8).reshape(5, 5)
    >>> lumcv.sample_line(picture, (0, 0), (4, 2))
    array([ 0,  1,  7,  8, 14], dtype=uint8)
    """
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, dtype, name = _line[array.dtype, channels]
    samples = max(abs(end[0] - start[0]), abs(end[1] - start[1])) + 1
    # Points that lie outside are refused before anything is written.
    held = min(samples, max(width, height))
    line, result, _ = target(None if out is None else out[None], (1, held, *array.shape[2:]), dtype)
    first, last = (ffi.new("LumPoint*", tuple(point))[0] for point in (start, end))
    status = call(pointer, step, SIZE[width, height], result, first, last)
    if status:
        check(status, name)
    samples_of_line: Array = line[0] if out is None else out
    return samples_of_line
