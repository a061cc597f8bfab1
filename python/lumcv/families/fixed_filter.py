"""Derivatives, the Laplacian, the low-pass filter, and the grey of a colour gradient."""

from typing import Any, Optional

import numpy

from .._array import FLOAT32, INT16, UINT8, Array, Image, of_image, source, target
from .._border import Border, BorderValue, border_word, one_element
from .._documentation import parameters_of
from .._ffi import ffi
from .._library import lib
from .._members import Members
from .._memory import SIZE, Memo, block, query
from .._status import check
from .._tiling import Tiling, around, pixelwise, tiled
from .separable import Separable

MASKS = {3: 33, 5: 55}


def mask_word(size: int) -> int:
    """The library's word for a built-in kernel of 3 x 3 or 5 x 5."""
    word = MASKS.get(size)
    if word is None:
        raise ValueError(f"size is 3 or 5, not {size!r}")
    return word


def _tables(operation: str) -> tuple[Members, str]:
    return Members(f"lumiFilter{operation}Border_{{t}}_C{{n}}R"), f"lumiFilter{operation}GetBufferSize_"


_cross = _tables("SobelCross")
_laplacian = _tables("Laplacian")
_lowpass = _tables("Lowpass")
_grey = Members("lumiGradientColorToGray_{s}_C{n}C1R")
_norms = {"inf": 0, "l1": 1, "l2": 2}

_plans: Memo[tuple[Any, int]] = Memo(
    lambda function, width, height, mask: (SIZE[width, height], query(function, SIZE[width, height], mask))
)


def _filter(
    tables: tuple[Members, str],
    image: Image,
    size: int,
    border: Border,
    border_value: BorderValue,
    out: Optional[Array],
) -> Array:
    mask = mask_word(size)
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, dtype, name = tables[0][array.dtype, channels]
    out, result, result_step = target(out, array.shape, dtype)
    reach = size // 2
    word = border_word(border, image, array, (reach, reach, reach, reach))
    value = one_element(border, border_value, array.dtype)
    whole, scratch = _plans[tables[1] + name.split("_", 1)[1], width, height, mask]
    status = call(pointer, step, result, result_step, whole, mask, word, value, block(scratch))
    if status:
        check(status, name, 4)
    return out


def _tiling(size: int = 3, **keywords: Any) -> Tiling:
    return around(size // 2)


def sobel_kernel(taps: int, order: int, dtype: Any = "int16", negative: bool = False) -> Array:
    """The kernel of a derivative: a 1, smoothed with {1, 1} and differenced with {-1, 1}.

    Parameters
    ----------
    taps : int
        Taps of the kernel: odd, above `order`.
    order : int
        Order of the derivative; 0 only smooths.
    dtype : int16 or float32
        Element type of the kernel.
    negative : bool
        Whether all elements are negated.

    Returns
    -------
    array of one dimension

    Examples
    --------
    >>> import lumcv
    >>> lumcv.sobel_kernel(5, 1)
    array([-1, -2,  0,  2,  1], dtype=int16)
    """
    kind = numpy.dtype(dtype)
    if kind not in (INT16, FLOAT32):
        raise TypeError(f"no kernels of {kind}; these would do: int16, float32")
    kernel = numpy.empty(max(taps, 1), kind)
    name = "lumiGenSobelKernel_16s" if kind == INT16 else "lumiGenSobelKernel_32f"
    pointer = ffi.from_buffer("Lum16s[]" if kind == INT16 else "Lum32f[]", kernel)
    check(getattr(lib, name)(pointer, taps, order, -1 if negative else 1), name)
    return kernel


def _derivative(size: int, dx: int, dy: int, dtype: Any, channels: int, kind: str) -> Separable:
    return Separable(sobel_kernel(size, dx, kind), sobel_kernel(size, dy, kind), dtype, channels, result=kind)


_derivatives: Memo[Separable] = Memo(_derivative, 64)


@tiled(_tiling)
def sobel(
    image: Image,
    dx: int = 1,
    dy: int = 0,
    size: int = 3,
    border: Border = "replicate",
    border_value: BorderValue = 0,
    out: Optional[Array] = None,
) -> Array:
    """A derivative of an image, not scaled.

    Parameters
    ----------
    image : array of uint8 or float32, with derivatives other than the cross one of 1, 3 or 4 channels
        The image.
    dx, dy : int
        Orders of the derivative along the rows and down the columns.
    size : int
        Taps of the kernels: odd, above both orders.
    border : {"replicate", "mirror", "constant"} or Region
        What lies outside the image.
    border_value : float or sequence
        The value of a constant border.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of int16 for uint8, else of float32
        Right minus left, below minus above.

    Examples
    --------
    >>> import lumcv, numpy
    >>> ramp = numpy.tile(numpy.arange(0, 50, 10, dtype=numpy.uint8), (3, 1))
    >>> lumcv.sobel(ramp)[1]
    array([40, 80, 80, 80, 40], dtype=int16)
    """
    array = of_image(image)
    if dx == 1 and dy == 1 and size in MASKS and array.ndim == 2:
        return _filter(_cross, image, size, border, border_value, out)
    kind = "int16" if array.dtype == UINT8 else "float32"
    if array.dtype not in (UINT8, FLOAT32):
        raise TypeError(f"no derivatives of {array.dtype}; these would do: uint8, float32")
    channels = array.shape[2] if array.ndim == 3 else 1
    return _derivatives[size, dx, dy, array.dtype, channels, kind].apply(image, border, border_value, out)


@tiled(_tiling)
def laplacian(
    image: Image,
    size: int = 3,
    border: Border = "replicate",
    border_value: BorderValue = 0,
    out: Optional[Array] = None,
) -> Array:
    """The Laplacian of an image, not scaled.

    Parameters
    ----------
    image : array of uint8 or float32
        The image.
    size : {3, 5}
        Side of the kernel.
    border : {"replicate", "mirror", "constant"} or Region
        What lies outside the image.
    border_value : float
        The value of a constant border.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of int16 for uint8, else of float32

    Examples
    --------
    >>> import lumcv, numpy
    >>> point = numpy.zeros((3, 3), numpy.uint8)
    >>> point[1, 1] = 1
    >>> lumcv.laplacian(point)
    array([[ 2,  0,  2],
           [ 0, -8,  0],
           [ 2,  0,  2]], dtype=int16)
    """
    return _filter(_laplacian, image, size, border, border_value, out)


@tiled(_tiling)
@parameters_of(laplacian)
def lowpass(
    image: Image,
    size: int = 3,
    border: Border = "replicate",
    border_value: BorderValue = 0,
    out: Optional[Array] = None,
) -> Array:
    """The mean of 3 x 3 or 5 x 5 pixels.

    Parameters are those of `laplacian`.

    Returns
    -------
    array like the image

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.lowpass(numpy.array([[0, 0, 90, 0, 0]], numpy.uint8))
    array([[ 0, 30, 30, 30,  0]], dtype=uint8)
    """
    return _filter(_lowpass, image, size, border, border_value, out)


@pixelwise
def gradient_to_gray(image: Image, norm: str = "l2", out: Optional[Array] = None) -> Array:
    """Reduces the three channels of a gradient to one.

    Parameters
    ----------
    image : array of uint8, uint16 or float32, of 3 channels
        The image.
    norm : {"l2", "l1", "inf"}
        The root of the mean of squares, the mean, or the largest of the channels.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of two dimensions and the image's type

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.gradient_to_gray(numpy.array([[[3, 6, 9]]], numpy.uint8), norm="inf")
    array([[9]], dtype=uint8)
    """
    if norm not in _norms:
        raise ValueError(f'norm is "l2", "l1" or "inf", not {norm!r}')
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, dtype, name = _grey[array.dtype, channels]
    out, result, result_step = target(out, (height, width), dtype)
    status = call(pointer, step, result, result_step, SIZE[width, height], _norms[norm])
    if status:
        check(status, name)
    return out
