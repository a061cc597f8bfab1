"""Norms of images and of their differences."""

from typing import Any, Optional

import numpy

from .._array import UINT8, Image, alike, of_image, of_mask, source
from .._ffi import ffi
from .._members import Members
from .._memory import SIZE
from .._status import check
from .._tiling import whole
from .stats import by_channel

_kinds = {"inf": "Inf", "l1": "L1", "l2": "L2"}
_tables = {
    (prefix, kind, of_channel): Members(f"lumi{prefix}_{word}_{{s}}_C{{n}}{'CMR' if of_channel else 'MR'}")
    for prefix in ("Norm", "NormDiff", "NormRel")
    for kind, word in _kinds.items()
    for of_channel in (False, True)
}
_double = ffi.typeof("Lum64f*")


@whole("it tells a number; reduce in lumcv.tiles and lumcv.dask combines those of parts")
def norm(
    image: Image,
    other: Optional[Image] = None,
    kind: str = "l2",
    mask: Optional[Image] = None,
    channel: Optional[int] = None,
    relative: bool = False,
) -> Any:
    """The norm of an image, or of the difference of two.

    Parameters
    ----------
    image : array of uint8, uint16 or float32, of 1 or 3 channels
        The image.
    other : array like `image`, optional
        Taken from it first.
    kind : {"l2", "l1", "inf"}
        The root of the sum of squares, the sum of magnitudes, or the largest magnitude.
    mask : array of uint8 or bool, optional
        Pixels where it is 0 are left out.
    channel : int, optional
        The channel looked at, 0 to 2.
    relative : bool
        Whether the norm of the difference is divided by the norm of `other`. Where that is 0, there is a warning, and the
        result is infinite or not a number.

    Returns
    -------
    float, or a tuple of three where there are three channels and none is named

    Examples
    --------
    >>> import lumcv, numpy
    >>> a = numpy.array([[10, 20, 30, 40]], numpy.uint8)
    >>> b = numpy.array([[10, 24, 30, 37]], numpy.uint8)
    >>> lumcv.norm(a, b, kind="l1"), lumcv.norm(a, b)
    (7.0, 5.0)
    """
    if kind not in _kinds:
        raise ValueError(f'kind is "l2", "l1" or "inf", not {kind!r}')
    if relative and other is None:
        raise ValueError("a relative norm is that of a difference: it needs another image")
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    arguments = [pointer, step]
    if other is not None:
        arguments += alike(other, array, "other")
    if mask is None:
        mask = numpy.ones((height, width), UINT8)
    arguments += of_mask(mask, height, width)
    prefix = "NormRel" if relative else "Norm" if other is None else "NormDiff"

    def one(each: Optional[int]) -> float:
        call, _, name = _tables[prefix, kind, each is not None][array.dtype, channels]
        result = ffi.new(_double)
        of_channel = () if each is None else (each + 1,)
        status = call(*arguments, SIZE[width, height], *of_channel, result)
        if status:
            check(status, name, 5)
        value: float = result[0]
        return value

    return by_channel(channels, channel, one)
