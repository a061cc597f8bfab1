"""Running sums and averages of frames."""

from typing import Any, Optional

from .._array import FLOAT32, Array, Image, alike, of_image, of_mask, source, target
from .._members import Members
from .._memory import SIZE
from .._status import check
from .._tiling import in_place, pixelwise

Tables = tuple[Members, Members]


def _tables(operation: str) -> Tables:
    return Members(f"lumi{operation}_{{t}}_C{{n}}IR"), Members(f"lumi{operation}_{{t}}_C{{n}}IMR")


_sum = _tables("Add")
_square = _tables("AddSquare")
_product = _tables("AddProduct")
_weighted = _tables("AddWeighted")
_blend = Members("lumiAddWeighted_{s}_C{n}R")


def _into(tables: Tables, images: list[Image], total: Array, mask: Optional[Image], *values: Any) -> Array:
    array = of_image(images[0])
    pointer, step, height, width, channels = source(array)
    call, _, name = tables[mask is not None][array.dtype, channels]
    arguments = [pointer, step]
    for other in images[1:]:
        arguments += alike(other, array, "other")
    if mask is not None:
        arguments += of_mask(mask, height, width)
    total, result, result_step = target(total, array.shape, FLOAT32, "total")
    status = call(*arguments, result, result_step, SIZE[width, height], *values)
    if status:
        check(status, name)
    return total


@in_place
def accumulate(image: Image, total: Array, mask: Optional[Image] = None) -> Array:
    """Adds a frame to a running sum.

    Parameters
    ----------
    image : array of uint8 or uint16, with a mask also float32
        The frame.
    total : array of float32
        The sum, changed in place.
    mask : array of uint8 or bool, optional
        Pixels where it is 0 are left out.

    Returns
    -------
    array
        `total`.

    Examples
    --------
    >>> import lumcv, numpy
    >>> total = numpy.zeros((1, 3), numpy.float32)
    >>> for tone in (1, 2, 3):
    ...     total = lumcv.accumulate(numpy.full((1, 3), tone, numpy.uint8), total)
    >>> total
    array([[6., 6., 6.]], dtype=float32)
    """
    return _into(_sum, [image], total, mask)


@in_place
def accumulate_square(image: Image, total: Array, mask: Optional[Image] = None) -> Array:
    """Adds the squares of a frame to a running sum.

    Parameters
    ----------
    image : array of uint8, uint16 or float32
        The frame.
    total : array of float32
        The sum, changed in place.
    mask : array of uint8 or bool, optional
        Pixels where it is 0 are left out.

    Returns
    -------
    array
        `total`.

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.accumulate_square(numpy.array([[1, 2, 3]], numpy.uint8), numpy.zeros((1, 3), numpy.float32))
    array([[1., 4., 9.]], dtype=float32)
    """
    return _into(_square, [image], total, mask)


@in_place
def accumulate_product(image: Image, other: Image, total: Array, mask: Optional[Image] = None) -> Array:
    """Adds the product of two frames to a running sum.

    Parameters
    ----------
    image, other : arrays of uint8, uint16 or float32
        The frames.
    total : array of float32
        The sum, changed in place.
    mask : array of uint8 or bool, optional
        Pixels where it is 0 are left out.

    Returns
    -------
    array
        `total`.

    Examples
    --------
    >>> import lumcv, numpy
    >>> frame = numpy.array([[1, 2, 3]], numpy.uint8)
    >>> lumcv.accumulate_product(frame, 2 * frame, numpy.zeros((1, 3), numpy.float32))
    array([[ 2.,  8., 18.]], dtype=float32)
    """
    return _into(_product, [image, other], total, mask)


@in_place
def accumulate_weighted(image: Image, average: Array, alpha: float, mask: Optional[Image] = None) -> Array:
    """Moves a running average towards a frame.

    Parameters
    ----------
    image : array of uint8, uint16 or float32
        The frame.
    average : array of float32
        The average, changed in place: `average + (image - average) * alpha`.
    alpha : float
        The weight of the frame.
    mask : array of uint8 or bool, optional
        Pixels where it is 0 are left out.

    Returns
    -------
    array
        `average`.

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.accumulate_weighted(numpy.array([[0, 8]], numpy.uint8), numpy.zeros((1, 2), numpy.float32), 0.25)
    array([[0., 2.]], dtype=float32)
    """
    return _into(_weighted, [image], average, mask, alpha)


@pixelwise
def add_weighted(image: Image, other: Image, alpha: float, out: Optional[Array] = None) -> Array:
    """The weighted average of two images: `other + (image - other) * alpha`.

    Parameters
    ----------
    image, other : arrays of float32
        The images.
    alpha : float
        The weight of `image`.
    out : array, optional
        Takes the result; may be one of the images.

    Returns
    -------
    array of float32

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.add_weighted(numpy.float32([[8, 8]]), numpy.float32([[0, 4]]), 0.25)
    array([[2., 5.]], dtype=float32)
    """
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, dtype, name = _blend[array.dtype, channels]
    second, second_step = alike(other, array, "other")
    out, result, result_step = target(out, array.shape, dtype)
    status = call(pointer, step, second, second_step, result, result_step, SIZE[width, height], alpha)
    if status:
        check(status, name)
    return out
