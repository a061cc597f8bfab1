"""Erosion, dilation and the operators that are made of them."""

from typing import Any, Optional, Union

import numpy

from .._array import CODES, UINT8, Array, Image, of_image, source, target
from .._border import Border, BorderValue, Reach, border_elements, border_word
from .._ffi import ffi
from .._library import lib
from .._members import Members
from .._memory import SIZE_L, Memo, block, query
from .._status import check
from .._tiling import Tiling, tiled

_single = {name: Members(f"lumi{name}_{{s}}_C{{n}}R_L") for name in ("Dilate", "Erode")}
_compound = {name: Members(f"lumiMorph{name}_{{s}}_C{{n}}R_L") for name in ("Open", "Close", "Tophat", "Blackhat", "Gradient")}

Mask = Union[int, tuple[int, int], Array, "StructuringElement"]


class StructuringElement:
    """The mask of a morphological operator, analysed once for each size of image, for any number of threads.

    Parameters
    ----------
    mask : int, tuple of int, or array
        The side of a full square, (height, width) of a full rectangle, or an array whose elements other than 0 belong to
        the mask. Its middle lies over the pixel; a mask of an even side reaches one pixel further to the right and below.

    Examples
    --------
    >>> import lumcv, numpy
    >>> cross = lumcv.StructuringElement(numpy.array([[0, 1, 0], [1, 1, 1], [0, 1, 0]]))
    >>> point = numpy.zeros((3, 3), numpy.uint8)
    >>> point[1, 1] = 9
    >>> lumcv.dilate(point, cross)
    array([[0, 9, 0],
           [9, 9, 9],
           [0, 9, 0]], dtype=uint8)
    """

    def __init__(self, mask: Union[int, tuple[int, int], Array] = 3) -> None:
        if isinstance(mask, (int, numpy.integer)):
            mask = (int(mask), int(mask))
        cells = numpy.ones(mask, UINT8) if isinstance(mask, tuple) else (numpy.asarray(mask) != 0).astype(UINT8)
        if cells.ndim != 2 or cells.size == 0:
            raise ValueError("a mask has two dimensions and one cell or more")
        # An even side gets an empty row on top or an empty column at the left: that is where the library adds them.
        height, width = cells.shape
        self.cells = numpy.zeros((height | 1, width | 1), UINT8)
        self.cells[(height | 1) - height :, (width | 1) - width :] = cells
        rows, columns = self.cells.shape[0] // 2, self.cells.shape[1] // 2
        self.reach: Reach = (rows, rows, columns, columns)
        self.twice: Reach = (2 * rows, 2 * rows, 2 * columns, 2 * columns)
        self._single: Memo[Any] = Memo(self._make_single, 16)
        self._compound: Memo[Any] = Memo(self._make_compound, 16)

    def __reduce__(self) -> tuple[type, tuple[Any, ...]]:
        return StructuringElement, (self.cells,)

    def _sizes(self, width: int, height: int) -> tuple[Any, Any, Any]:
        cells = SIZE_L[self.cells.shape[1], self.cells.shape[0]]
        return SIZE_L[width, height], ffi.from_buffer("Lum8u[]", self.cells), cells

    def _make_single(self, width: int, height: int, dtype: Any, channels: int) -> tuple[Any, int, Any, Any]:
        size, cells, cells_size = self._sizes(width, height)
        memory = block(query("lumiDilateGetSpecSize_L", size, cells_size))
        scratch = query("lumiDilateGetBufferSize_L", size, cells_size, CODES[dtype], channels)
        spec = ffi.cast("LumMorphLongState*", memory)
        check(lib.lumiDilateInit_L(size, cells, cells_size, spec), "lumiDilateInit_L")
        return spec, scratch, size, memory

    def _make_compound(
        self, width: int, height: int, dtype: Any, channels: int, mode: int
    ) -> tuple[Any, int, Any, Any]:
        size, cells, cells_size = self._sizes(width, height)
        code = CODES[dtype]
        memory = block(query("lumiMorphGetSpecSize_L", size, cells_size, code, channels))
        scratch = query("lumiMorphGetBufferSize_L", size, cells_size, code, channels)
        spec = ffi.cast("LumMorphPairState*", memory)
        check(lib.lumiMorphInit_L(size, cells, cells_size, code, channels, spec), "lumiMorphInit_L")
        if mode:
            check(lib.lumiMorphSetMode_L(mode, spec), "lumiMorphSetMode_L")
        return spec, scratch, size, memory


_elements: Memo[StructuringElement] = Memo(
    lambda data, shape: StructuringElement(numpy.frombuffer(data, UINT8).reshape(shape) if data else shape), 64
)


def element_of(mask: Mask) -> StructuringElement:
    """The structuring element of a mask, made once for masks that come again."""
    if isinstance(mask, StructuringElement):
        return mask
    if isinstance(mask, numpy.ndarray):
        cells = (mask != 0).astype(UINT8)
        return _elements[cells.tobytes(), cells.shape]
    return _elements[b"", mask]


def _run(
    members: Members,
    spec: Any,
    image: Image,
    array: Array,
    view: tuple[Any, int, int, int, int],
    reach: Reach,
    border: Border,
    border_value: BorderValue,
    out: Optional[Array],
) -> Array:
    pointer, step, _, _, channels = view
    call, dtype, name = members[array.dtype, channels]
    out, result, result_step = target(out, array.shape, dtype)
    word = border_word(border, image, array, reach)
    value = border_elements(border, border_value, channels, dtype)
    state, scratch, size, _ = spec
    status = call(pointer, step, result, result_step, size, word, value, state, block(scratch))
    if status:
        check(status, name, 5)
    return out


def _apply_single(
    operator: str, image: Image, mask: Mask, border: Border, border_value: BorderValue, out: Optional[Array]
) -> Array:
    element = element_of(mask)
    array = of_image(image)
    view = source(array)
    members = _single[operator]
    members[array.dtype, view[4]]
    spec = element._single[view[3], view[2], array.dtype, view[4]]
    return _run(members, spec, image, array, view, element.reach, border, border_value, out)


def _apply_compound(
    operator: str,
    image: Image,
    mask: Mask,
    border: Border,
    border_value: BorderValue,
    out: Optional[Array],
    mode: int = 0,
) -> Array:
    element = element_of(mask)
    array = of_image(image)
    view = source(array)
    members = _compound[operator]
    members[array.dtype, view[4]]
    spec = element._compound[view[3], view[2], array.dtype, view[4], mode]
    reach = element.reach if operator == "Gradient" else element.twice
    return _run(members, spec, image, array, view, reach, border, border_value, out)


def _once(mask: Mask = 3, **keywords: Any) -> Tiling:
    return Tiling(element_of(mask).reach)


def _twice(mask: Mask = 3, **keywords: Any) -> Tiling:
    return Tiling(element_of(mask).twice)


@tiled(_once)
def dilate(
    image: Image,
    mask: Mask = 3,
    border: Border = "default",
    border_value: BorderValue = 0,
    out: Optional[Array] = None,
) -> Array:
    """Gives each pixel the largest of the pixels under the mask.

    Parameters
    ----------
    image : array of uint8 or float32 (1, 3 or 4 channels), uint16 or int16
        The image.
    mask : int, tuple of int, array or StructuringElement
        The side of a full square, (height, width) of a full rectangle, or an array whose elements other than 0 belong to
        the mask.
    border : {"default", "replicate", "mirror", "constant"} or Region
        What lies outside the image; "default" is pixels that change nothing.
    border_value : float or sequence
        The value of a constant border, one for all channels or one for each.
    out : array, optional
        Takes the result; not the image itself.

    Returns
    -------
    array like the image

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.dilate(numpy.array([[0, 0, 5, 0, 0, 7]], numpy.uint8))
    array([[0, 5, 5, 5, 7, 7]], dtype=uint8)
    """
    return _apply_single("Dilate", image, mask, border, border_value, out)


@tiled(_once)
def erode(
    image: Image,
    mask: Mask = 3,
    border: Border = "default",
    border_value: BorderValue = 0,
    out: Optional[Array] = None,
) -> Array:
    """Gives each pixel the smallest of the pixels under the mask.

    Parameters are those of `dilate`.

    Returns
    -------
    array like the image

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.erode(numpy.array([[9, 9, 5, 9, 9, 7]], numpy.uint8))
    array([[9, 5, 5, 5, 7, 7]], dtype=uint8)
    """
    return _apply_single("Erode", image, mask, border, border_value, out)


@tiled(_twice)
def morph_open(
    image: Image,
    mask: Mask = 3,
    border: Border = "default",
    border_value: BorderValue = 0,
    out: Optional[Array] = None,
) -> Array:
    """Opening: erosion, then dilation by the reflected mask. Bright details that the mask does not fit into go.

    Parameters are those of `dilate`; `out` may be the image itself.

    Returns
    -------
    array like the image

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.morph_open(numpy.array([[0, 9, 0, 0, 8, 8, 8, 0]], numpy.uint8))
    array([[0, 0, 0, 0, 8, 8, 8, 0]], dtype=uint8)
    """
    return _apply_compound("Open", image, mask, border, border_value, out)


@tiled(_twice)
def morph_close(
    image: Image,
    mask: Mask = 3,
    border: Border = "default",
    border_value: BorderValue = 0,
    out: Optional[Array] = None,
) -> Array:
    """Closing: dilation, then erosion by the reflected mask. Dark details that the mask does not fit into go.

    Parameters are those of `dilate`; `out` may be the image itself.

    Returns
    -------
    array like the image

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.morph_close(numpy.array([[9, 1, 9, 9, 2, 2, 2, 9]], numpy.uint8))
    array([[9, 9, 9, 9, 2, 2, 2, 9]], dtype=uint8)
    """
    return _apply_compound("Close", image, mask, border, border_value, out)


@tiled(_twice)
def morph_tophat(
    image: Image,
    mask: Mask = 3,
    border: Border = "default",
    border_value: BorderValue = 0,
    keep_negative: bool = False,
    out: Optional[Array] = None,
) -> Array:
    """Top-hat: what the opening takes away.

    Parameters are those of `dilate`, and

    Parameters
    ----------
    keep_negative : bool
        Whether differences of int16 and float32 below 0 are kept; else they become 0.

    Returns
    -------
    array like the image

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.morph_tophat(numpy.array([[0, 9, 0, 0, 8, 8, 8, 0]], numpy.uint8))
    array([[0, 9, 0, 0, 0, 0, 0, 0]], dtype=uint8)
    """
    return _apply_compound("Tophat", image, mask, border, border_value, out, 4 if keep_negative else 0)


@tiled(_twice)
def morph_blackhat(
    image: Image,
    mask: Mask = 3,
    border: Border = "default",
    border_value: BorderValue = 0,
    keep_negative: bool = False,
    out: Optional[Array] = None,
) -> Array:
    """Black-hat: what the closing adds.

    Parameters are those of `morph_tophat`.

    Returns
    -------
    array like the image

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.morph_blackhat(numpy.array([[9, 1, 9, 9, 2, 2, 2, 9]], numpy.uint8))
    array([[0, 8, 0, 0, 0, 0, 0, 0]], dtype=uint8)
    """
    return _apply_compound("Blackhat", image, mask, border, border_value, out, 4 if keep_negative else 0)


@tiled(_once)
def morph_gradient(
    image: Image,
    mask: Mask = 3,
    border: Border = "replicate",
    border_value: BorderValue = 0,
    keep_negative: bool = False,
    out: Optional[Array] = None,
) -> Array:
    """Gradient: the erosion by the reflected mask taken from the dilation by the mask.

    Parameters are those of `morph_tophat`.

    Returns
    -------
    array like the image

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.morph_gradient(numpy.array([[1, 1, 1, 5, 5, 5]], numpy.uint8))
    array([[0, 0, 4, 4, 0, 0]], dtype=uint8)
    """
    return _apply_compound("Gradient", image, mask, border, border_value, out, 4 if keep_negative else 0)
