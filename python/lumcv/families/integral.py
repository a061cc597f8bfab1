"""Summed-area images and the deviation of rectangles."""

from typing import Any, Optional, Union

import numpy

from .._array import FLOAT32, FLOAT64, INT32, Array, Image, alike, of_image, source, target
from .._ffi import ffi
from .._members import Members
from .._memory import SIZE
from .._status import check
from .._tiling import whole

#: By the types of sums and squares.
_upright = {
    (INT32, None): Members("lumiIntegral_{s}32s_C{n}R"),
    (FLOAT32, None): Members("lumiIntegral_{s}32f_C{n}R"),
    (INT32, INT32): Members("lumiSqrIntegral_{s}32s_C{n}R"),
    (INT32, FLOAT64): Members("lumiSqrIntegral_{s}32s64f_C{n}R"),
    (FLOAT32, FLOAT64): Members("lumiSqrIntegral_{s}32f64f_C{n}R"),
}
_floats = Members("lumiIntegral_{s}_C{n}R")
_tilted = {
    (INT32, None): Members("lumiTiltedIntegral_{s}32s_C{n}R"),
    (FLOAT32, None): Members("lumiTiltedIntegral_{s}32f_C{n}R"),
    (INT32, INT32): Members("lumiTiltedSqrIntegral_{s}32s_C{n}R"),
    (INT32, FLOAT64): Members("lumiTiltedSqrIntegral_{s}32s64f_C{n}R"),
    (FLOAT32, FLOAT64): Members("lumiTiltedSqrIntegral_{s}32f64f_C{n}R"),
}
_deviations = {
    (tilted, sums, squares): Members(f"lumi{'Tilted' if tilted else ''}RectStdDev_{{s}}{tail}")
    for tilted in (False, True)
    for sums, squares, tail in ((INT32, INT32, "_C1RSfs"), (INT32, FLOAT64, "32f_C1R"), (FLOAT32, FLOAT64, "_C1R"))
}
Sums = Union[Array, tuple[Array, Array]]
_reason = "each sum is over all pixels above and to the left"


def _integral(
    tables: dict[Any, Members],
    border: int,
    image: Image,
    dtype: Any,
    squares: Any,
    value: float,
    squares_value: float,
    out: Optional[Sums],
) -> Sums:
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    sums_type = numpy.dtype(dtype) if dtype is not None else FLOAT32 if array.dtype == FLOAT32 else INT32
    squares_type = None if squares is None else numpy.dtype(squares)
    members: Any = tables.get((sums_type, squares_type))
    values: list[float] = [value]
    if array.dtype == FLOAT32 and border == 1 and squares_type is None and sums_type == FLOAT32:
        members = _floats
        if value:
            raise ValueError("the sums of float32 start with 0")
        values = []
    if members is None:
        raise TypeError(
            f"no sums of {sums_type} with squares of {squares_type}; these would do: int32 alone, with int32 or with "
            "float64, float32 alone or with float64"
        )
    call, _, name = members[array.dtype, channels]
    shape = (height + border, width + border)
    given = out if isinstance(out, tuple) else (out,)
    if out is not None and len(given) != (1 if squares_type is None else 2):
        raise ValueError("out is an array for the sums, and with squares a tuple of two")
    sums, sums_pointer, sums_step = target(given[0], shape, sums_type)
    arguments = [pointer, step, sums_pointer, sums_step]
    if squares_type is not None:
        second, second_pointer, second_step = target(given[-1], shape, squares_type)
        arguments += [second_pointer, second_step]
        values.append(squares_value)
    starts = (int(each) if kind == INT32 else each for each, kind in zip(values, (sums_type, squares_type)))
    status = call(*arguments, SIZE[width, height], *starts)
    if status:
        check(status, name, 4)
    return sums if squares_type is None else (sums, second)


@whole(_reason)
def integral(
    image: Image,
    dtype: Any = None,
    squares: Any = None,
    value: float = 0,
    squares_value: float = 0,
    out: Optional[Sums] = None,
) -> Sums:
    """The summed-area image: the sums over all rectangles that begin at the first pixel.

    Parameters
    ----------
    image : array of uint8 or float32
        The image.
    dtype : int32 or float32, optional
        The type of the sums: int32 for uint8, float32 for float32, unless given. Sums of int32 wrap.
    squares : int32 or float64, optional
        Where given, the sums of squares are made too, in this type. For uint8 only.
    value, squares_value : float
        What the sums and the sums of squares start with.
    out : array, or a tuple of two with `squares`, optional
        Takes the result.

    Returns
    -------
    array, or a tuple of two with `squares`
        One row and one column more than the image has; the first of each hold `value`.

    Examples
    --------
    >>> import lumcv, numpy
    >>> sums = lumcv.integral(numpy.array([[1, 2], [3, 4]], numpy.uint8))
    >>> sums
    array([[ 0,  0,  0],
           [ 0,  1,  3],
           [ 0,  4, 10]], dtype=int32)
    >>> int(sums[2, 2] - sums[0, 2] - sums[2, 0] + sums[0, 0])
    10
    """
    return _integral(_upright, 1, image, dtype, squares, value, squares_value, out)


@whole(_reason)
def tilted_integral(
    image: Image,
    dtype: Any = None,
    squares: Any = None,
    value: float = 0,
    squares_value: float = 0,
    out: Optional[Sums] = None,
) -> Sums:
    """The summed-area image of rectangles that are turned by 45 degrees.

    Parameters
    ----------
    image : array of uint8
        The image.
    dtype : int32 or float32, optional
        The type of the sums, int32 unless given.
    squares : int32 or float64, optional
        Where given, the sums of squares are made too, in this type.
    value, squares_value : float
        What the sums and the sums of squares start with.
    out : array, or a tuple of two with `squares`, optional
        Takes the result.

    Returns
    -------
    array, or a tuple of two with `squares`
        Two rows and two columns more than the image has; each element is the sum over a cone of pixels that opens upward.

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.tilted_integral(numpy.array([[1, 2], [3, 4]], numpy.uint8))
    array([[0, 0, 0, 0],
           [0, 0, 0, 0],
           [0, 3, 2, 0],
           [3, 9, 7, 2]], dtype=int32)
    """
    return _integral(_tilted, 2, image, INT32 if dtype is None else dtype, squares, value, squares_value, out)


@whole("it takes the sums of a whole picture")
def rect_stddev(
    sums: Array,
    squares: Array,
    rect: tuple[int, int, int, int],
    tilted: bool = False,
    scale: int = 0,
    out: Optional[Array] = None,
) -> Array:
    """The standard deviation of the pixels in a rectangle, at each of its places.

    Parameters
    ----------
    sums, squares : arrays
        What `integral` (`tilted_integral` with `tilted`) gives for an image with `squares`: int32 with int32, int32 with
        float64, or float32 with float64.
    rect : tuple of int
        (x, y, width, height) of the rectangle at its first place. One that is turned has its upper corner at
        (x - y, x + y) of the sums and reaches `height` columns to the left of it.
    tilted : bool
        Whether the rectangle is turned by 45 degrees.
    scale : int
        Of int32 with int32: the result is multiplied by 2 to the power of minus `scale`.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of float32; of int32 where both sums are int32
        One element for each place at which the rectangle lies in the image.

    Examples
    --------
    >>> import lumcv, numpy
    >>> picture = numpy.array([[1, 3, 1], [3, 1, 3]], numpy.uint8)
    >>> sums, squares = lumcv.integral(picture, squares="float64")
    >>> lumcv.rect_stddev(sums, squares, (0, 0, 2, 2))
    array([[1., 1.]], dtype=float32)
    """
    height, width = sums.shape[:2]
    if squares.shape != sums.shape:
        raise ValueError(f"squares has the shape {squares.shape}; the sums have {sums.shape}")
    members = _deviations.get((tilted, sums.dtype, squares.dtype))
    if members is None:
        raise TypeError(
            f"no sums of {sums.dtype} go with squares of {squares.dtype}; these would do: int32 with int32, int32 with "
            "float64, float32 with float64"
        )
    x, y, w, h = rect
    if tilted:
        left, right, top, bottom = x - y - h, x - y + w, x + y, x + y + w + h
    else:
        left, right, top, bottom = x, x + w, y, y + h
    places = (height - bottom, width - right)
    if min(left, top) < 0 or min(places) < 1:
        raise ValueError(f"the rectangle {tuple(rect)} does not lie in the image")
    if tilted:
        # The same corners from a place further on, so that rows hold what the library asks of them.
        sums, squares, x, y = sums[top:, x - y :], squares[top:, x - y :], 0, 0
    first, first_step, _, _, channels = source(sums, "sums")
    second, second_step = alike(squares, sums, "squares", squares.dtype)
    call, _, name = members[sums.dtype, channels]
    both = squares.dtype == INT32
    out, result, result_step = target(out, places, INT32 if both else FLOAT32)
    rectangle = ffi.new("LumRect*", (x, y, w, h))[0]
    arguments = [first, first_step, second, second_step, result, result_step, SIZE[places[1], places[0]], rectangle]
    status = call(*arguments, scale) if both else call(*arguments)
    if status:
        check(status, name)
    return out
