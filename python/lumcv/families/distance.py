"""Distances from the pixels that are 0."""

from typing import Any, Optional, Sequence

import numpy

from .._array import FLOAT32, INT32, UINT8, UINT16, Array, Image, of_image, source, target
from .._ffi import ffi
from .._library import lib
from .._memory import SIZE, Memo, block, query
from .._status import check
from .._tiling import whole

_norms = {"inf": 0, "l1": 1, "l2": 2}
_results = {UINT8: "8u", UINT16: "8u16u", FLOAT32: "8u32f"}
_bool = numpy.dtype(bool)


def _bytes_of(image: Image, function: str) -> tuple[Array, Any, int, int, int]:
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    if array.dtype not in (UINT8, _bool) or channels != 1:
        raise TypeError(f"{function} takes uint8 or bool with 1 channel, not {array.dtype} with {channels}")
    return array, pointer, step, height, width


def distance_steps(size: int = 5, norm: str = "l2", dtype: Any = "float32") -> Array:
    """The usual lengths of the steps of a chamfer distance.

    Parameters
    ----------
    size : {5, 3}
        With 3, steps along an axis and along a diagonal; with 5, also those of a knight.
    norm : {"l2", "l1", "inf"}
        The distance that they approximate.
    dtype : float32 or int32
        Lengths of "l2" in whole numbers are in units of their own.

    Returns
    -------
    array of two or three lengths

    Examples
    --------
    >>> import lumcv
    >>> lumcv.distance_steps(5, "l2", "int32")
    array([ 5,  7, 11], dtype=int32)
    """
    if norm not in _norms:
        raise ValueError(f'norm is "l2", "l1" or "inf", not {norm!r}')
    kind = numpy.dtype(dtype)
    if kind not in (FLOAT32, INT32):
        raise TypeError(f"no lengths of {kind}; these would do: float32, int32")
    lengths = numpy.empty(3, kind)
    token = "32f" if kind == FLOAT32 else "32s"
    name = f"lumiGetDistanceTransformMask_{token}"
    check(getattr(lib, name)(size, _norms[norm], ffi.from_buffer(f"Lum{token}[]", lengths)), name)
    return lengths[: 2 if size == 3 else 3]


def _usual_steps(size: int, norm: str, unit: Any) -> Any:
    return ffi.from_buffer(_units[unit], distance_steps(size, norm, unit))


_units = {FLOAT32: "Lum32f[]", INT32: "Lum32s[]"}
_steps: Memo[Any] = Memo(_usual_steps)


@whole("the nearest pixel that is 0 may be anywhere in the picture")
def distance(
    image: Image,
    size: int = 5,
    norm: str = "l2",
    dtype: Any = "float32",
    steps: Optional[Sequence[float]] = None,
    out: Optional[Array] = None,
) -> Array:
    """The chamfer distance of each pixel from the nearest one that is 0, along chains of steps.

    Parameters
    ----------
    image : array of uint8 or bool
        The image.
    size : {5, 3}
        Steps along axes and diagonals (3), and also those of a knight (5).
    norm : {"l2", "l1", "inf"}
        Which of the usual lengths the steps have.
    dtype : float32, uint16 or uint8
        Element type of the result. Lengths of integers are in units of their own, 5 a pixel for "l2" with size 5.
    steps : sequence of two or three numbers, optional
        Lengths of the steps, in place of the usual ones.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of `dtype`

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.distance(numpy.array([[0, 1, 1, 1]], numpy.uint8))
    array([[0., 1., 2., 3.]], dtype=float32)
    """
    array, pointer, step, height, width = _bytes_of(image, "distance")
    kind = numpy.dtype(dtype)
    if kind not in _results:
        raise TypeError(f"no distances of {kind}; these would do: uint8, uint16, float32")
    if size not in (3, 5):
        raise ValueError(f"size is 3 or 5, not {size!r}")
    unit = FLOAT32 if kind == FLOAT32 else INT32
    if steps is None:
        data = _steps[size, norm, unit]
    else:
        lengths = numpy.ascontiguousarray(steps, unit)
        if lengths.shape != ((size + 1) // 2,):
            raise ValueError(f"steps has {(size + 1) // 2} lengths with size {size}")
        data = ffi.from_buffer(_units[unit], lengths)
    out, result, result_step = target(out, array.shape, kind)
    name = f"lumiDistanceTransform_{size}x{size}_{_results[kind]}_C1R"
    status = getattr(lib, name)(pointer, step, result, result_step, SIZE[width, height], data)
    if status:
        check(status, name)
    return out


_true_scratch: Memo[int] = Memo(
    lambda width, height: query("lumiTrueDistanceTransformGetBufferSize_8u32f_C1R", SIZE[width, height])
)
_march_scratch: Memo[int] = Memo(
    lambda width, height: query("lumiFastMarchingGetBufferSize_8u32f_C1R", SIZE[width, height])
)


@whole("the nearest pixel that is 0 may be anywhere in the picture")
def true_distance(image: Image, out: Optional[Array] = None) -> Array:
    """The Euclidean distance of each pixel from the nearest one that is 0.

    Parameters
    ----------
    image : array of uint8 or bool
        The image.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of float32

    Examples
    --------
    >>> import lumcv, numpy
    >>> image = numpy.ones((4, 5), numpy.uint8)
    >>> image[0, 0] = 0
    >>> float(lumcv.true_distance(image)[3, 4])
    5.0
    """
    array, pointer, step, height, width = _bytes_of(image, "true_distance")
    out, result, result_step = target(out, array.shape, FLOAT32)
    scratch = block(_true_scratch[width, height])
    status = lib.lumiTrueDistanceTransform_8u32f_C1R(pointer, step, result, result_step, SIZE[width, height], scratch)
    if status:
        check(status, "lumiTrueDistanceTransform_8u32f_C1R")
    return out


@whole("distances grow from pixel to pixel through the whole mask")
def fast_marching(mask: Image, radius: float = 0.0, out: Optional[Array] = None) -> Array:
    """Distances inside a mask, and in a band around it, as solutions of the eikonal equation.

    Parameters
    ----------
    mask : array of uint8 or bool
        The mask.
    radius : float
        Width in pixels of the band outside the mask that gets distances, below 0.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of float32

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.fast_marching(numpy.array([[0, 0, 0], [0, 1, 0], [0, 0, 0]], numpy.uint8)).round(3)
    array([[0.   , 0.   , 0.   ],
           [0.   , 0.707, 0.   ],
           [0.   , 0.   , 0.   ]], dtype=float32)
    """
    array, pointer, step, height, width = _bytes_of(mask, "fast_marching")
    out, result, result_step = target(out, array.shape, FLOAT32)
    scratch = block(_march_scratch[width, height])
    status = lib.lumiFastMarching_8u32f_C1R(pointer, step, result, result_step, SIZE[width, height], radius, scratch)
    if status:
        check(status, "lumiFastMarching_8u32f_C1R")
    return out
