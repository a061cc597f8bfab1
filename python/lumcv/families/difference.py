"""Absolute differences."""

from typing import Optional, Union

import numpy

from .._array import FLOAT32, Array, Image, alike, of_image, source, target
from .._members import Members
from .._memory import SIZE
from .._status import check
from .._tiling import pixelwise

_images = Members("lumiAbsDiff_{s}_C{n}R")
_constant = Members("lumiAbsDiffC_{s}_C{n}R")


@pixelwise
def absdiff(image: Image, other: Union[Image, float], out: Optional[Array] = None) -> Array:
    """The absolute difference of two images, or of an image and a number.

    Parameters
    ----------
    image : array of uint8 (1 or 3 channels), uint16 or float32
        The first image.
    other : array like `image`, or a number
        What is taken from it. A whole number beyond the range of integer elements acts as the limit of that range.
    out : array, optional
        Takes the result; may be `image` or `other` itself.

    Returns
    -------
    array like `image`

    Examples
    --------
    >>> import lumcv, numpy
    >>> before = numpy.array([[10, 20], [30, 40]], numpy.uint8)
    >>> after = numpy.array([[10, 25], [20, 40]], numpy.uint8)
    >>> lumcv.absdiff(before, after)
    array([[ 0,  5],
           [10,  0]], dtype=uint8)
    >>> lumcv.absdiff(before, 25)
    array([[15,  5],
           [ 5, 15]], dtype=uint8)
    """
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    if isinstance(other, (int, float, numpy.number)):
        call, dtype, name = _constant[array.dtype, channels]
        value = float(other)
        if dtype != FLOAT32:
            if not value.is_integer():
                raise ValueError(f"other is a whole number where the elements are {dtype}")
            value = max(min(int(value), 2**31 - 1), -(2**31))
        out, result, result_step = target(out, array.shape, dtype)
        status = call(pointer, step, result, result_step, SIZE[width, height], value)
    else:
        call, dtype, name = _images[array.dtype, channels]
        second, second_step = alike(other, array, "other")
        out, result, result_step = target(out, array.shape, dtype)
        status = call(pointer, step, second, second_step, result, result_step, SIZE[width, height])
    if status:
        check(status, name)
    return out
