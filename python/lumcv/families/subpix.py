"""Patches of an image at fractional positions."""

from typing import Any, NamedTuple, Optional

import numpy

from .._array import UINT8, UINT16, Array, Image, of_image, source, target
from .._ffi import ffi
from .._members import Members
from .._memory import SIZE
from .._status import check
from .._tiling import whole

#: By the type of the result: that of the image, or another.
_inside = {None: Members("lumiCopySubpix_{s}_C{n}R"), "f": Members("lumiCopySubpix_{s}32f_C{n}R")}
_around = {None: Members("lumiCopySubpixIntersect_{s}_C{n}R"), "f": Members("lumiCopySubpixIntersect_{s}32f_C{n}R")}
_inside_scaled = Members("lumiCopySubpix_{s}16u_C{n}R_Sfs")
_around_scaled = Members("lumiCopySubpixIntersect_{s}16u_C{n}R_Sfs")


class Patch(NamedTuple):
    """A patch around a point.

    Attributes
    ----------
    image : array
        The patch.
    first, last : tuple of int
        Column and row of the first and of the last pixel of the part that lies fully inside the image.
    """

    image: Array
    first: tuple[int, int]
    last: tuple[int, int]


def _choose(
    tables: dict[Any, Members], scaled: Members, array: Array, channels: int, dtype: Any
) -> tuple[Any, Any, str, bool]:
    kind = array.dtype if dtype is None else numpy.dtype(dtype)
    if kind == array.dtype:
        call, _, name = tables[None][array.dtype, channels]
    elif array.dtype == UINT8 and kind == UINT16:
        call, _, name = scaled[array.dtype, channels]
    elif kind == numpy.dtype("float32"):
        call, _, name = tables["f"][array.dtype, channels]
    else:
        raise TypeError(
            f"no patches of {kind} from {array.dtype}; these would do: {array.dtype}, float32, uint16 from uint8"
        )
    return call, kind, name, name.endswith("Sfs")


@whole("its result has another size than the picture")
def copy_subpix(
    image: Image, dx: float, dy: float, dtype: Any = None, scale: int = 0, out: Optional[Array] = None
) -> Array:
    """An image moved by a fraction of a pixel, by bilinear interpolation.

    Parameters
    ----------
    image : array of uint8, uint16 or float32
        The image.
    dx, dy : float
        The position; only the fractions above the next lower whole numbers count.
    dtype : dtype, optional
        Element type of the result: that of the image, float32, or uint16 for a uint8 image.
    scale : int
        For uint16 from uint8: the result is multiplied by 2 to the power of minus `scale`, from -13 to 17.
    out : array, optional
        Takes the result.

    Returns
    -------
    array
        One row and one column less than the image has.

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.copy_subpix(numpy.array([[0, 8, 16], [0, 8, 16]], numpy.uint8), 0.5, 0)
    array([[ 4, 12]], dtype=uint8)
    """
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, kind, name, scaled = _choose(_inside, _inside_scaled, array, channels, dtype)
    if min(height, width) < 2:
        raise ValueError("the image has two rows and two columns or more")
    out, result, result_step = target(out, (height - 1, width - 1), kind)
    last = (scale,) if scaled else ()
    status = call(pointer, step, result, result_step, SIZE[width - 1, height - 1], dx, dy, *last)
    if status:
        check(status, name)
    return out


@whole("its result has another size than the picture")
def copy_patch(
    image: Image,
    centre: tuple[float, float],
    size: tuple[int, int],
    dtype: Any = None,
    scale: int = 0,
    out: Optional[Array] = None,
) -> Patch:
    """A patch around a point, by bilinear interpolation; outside the image its nearest pixels count.

    Parameters
    ----------
    image : array of uint8, uint16 or float32
        The image.
    centre : pair of float
        (x, y) of the patch's centre in the image.
    size : pair of int
        Height and width of the patch.
    dtype : dtype, optional
        Element type of the result: that of the image, float32, or uint16 for a uint8 image.
    scale : int
        For uint16 from uint8: the result is multiplied by 2 to the power of minus `scale`, from -13 to 17.
    out : array, optional
        Takes the result.

    Returns
    -------
    Patch
        `image`, `first` and `last`.

    Examples
    --------
    >>> import lumcv, numpy
    >>> ramp = numpy.tile(numpy.arange(0, 80, 10, dtype=numpy.uint8), (4, 1))
    >>> lumcv.copy_patch(ramp, centre=(2.5, 1), size=(1, 3)).image
    array([[15, 25, 35]], dtype=uint8)
    """
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, kind, name, scaled = _choose(_around, _around_scaled, array, channels, dtype)
    out, result, result_step = target(out, tuple(size), kind)
    point = ffi.new("LumPoint32f*", tuple(centre))[0]
    first, final = ffi.new("LumPoint*"), ffi.new("LumPoint*")
    last = (scale,) if scaled else ()
    patch_size = SIZE[size[1], size[0]]
    status = call(pointer, step, SIZE[width, height], result, result_step, patch_size, point, first, final, *last)
    if status:
        check(status, name)
    return Patch(out, (first.x, first.y), (final.x, final.y))
