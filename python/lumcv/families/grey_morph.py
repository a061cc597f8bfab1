"""Grey-weighted morphology and reconstruction."""

from typing import Optional

import numpy

from .._array import CODES, FLOAT32, INT32, UINT8, Array, Image, alike, of_image, source, target
from .._ffi import ffi
from .._library import lib
from .._members import Members
from .._memory import SIZE, Memo, block, query
from .._status import check
from .._tiling import whole

_dilate = Members("lumiGrayDilateBorder_{s}_C{n}R")
_erode = Members("lumiGrayErodeBorder_{s}_C{n}R")
_reconstruct = {
    "dilate": Members("lumiMorphReconstructDilate_{s}_C{n}IR"),
    "erode": Members("lumiMorphReconstructErode_{s}_C{n}IR"),
}
_replicate = 1
_neighbours = {8: 0, 4: 1}


def neighbourhood(connectivity: int) -> int:
    """The library's word for four or eight neighbours."""
    word = _neighbours.get(connectivity)
    if word is None:
        raise ValueError(f"connectivity is 4 or 8, not {connectivity!r}")
    return word


def _grey(
    members: Members, image: Image, weights: Array, anchor: Optional[tuple[int, int]], out: Optional[Array]
) -> Array:
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, dtype, name = members[array.dtype, channels]
    cells = numpy.ascontiguousarray(weights, INT32 if dtype == UINT8 else FLOAT32)
    if cells.ndim != 2 or cells.size == 0:
        raise ValueError("weights has two dimensions and one element or more")
    rows, columns = cells.shape
    y, x = (rows // 2, columns // 2) if anchor is None else anchor
    token = "8u" if dtype == UINT8 else "32f"
    size, mask_size = SIZE[width, height], SIZE[columns, rows]
    data = ffi.from_buffer(cells)
    memory = block(query(f"lumiMorphGrayGetSize_{token}_C1R", size, data, mask_size))
    state = ffi.cast("LumMorphGrayState*", memory)
    initialise = f"lumiMorphGrayInit_{token}_C1R"
    check(getattr(lib, initialise)(state, size, data, mask_size, ffi.new("LumPoint*", (x, y))[0]), initialise)
    out, result, result_step = target(out, array.shape, dtype)
    status = call(pointer, step, result, result_step, size, _replicate, state)
    if status:
        check(status, name, 4)
    return out


_no_memory = "its border repeats the outermost pixels, and never reads what lies beside a part in memory"


@whole(_no_memory)
def gray_dilate(
    image: Image, weights: Array, anchor: Optional[tuple[int, int]] = None, out: Optional[Array] = None
) -> Array:
    """Gives each pixel the largest of the pixels under the weights, each plus its weight.

    Parameters
    ----------
    image : array of uint8 or float32
        The image; outside of it its outermost pixels repeat.
    weights : array of two dimensions
        Whole numbers for uint8.
    anchor : tuple of int, optional
        Row and column of the weight over the pixel itself; the middle unless given.
    out : array, optional
        Takes the result.

    Returns
    -------
    array like the image

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.gray_dilate(numpy.array([[0, 0, 50, 0, 0]], numpy.uint8), numpy.array([[-10, 0, -10]]))
    array([[ 0, 40, 50, 40,  0]], dtype=uint8)
    """
    return _grey(_dilate, image, weights, anchor, out)


@whole(_no_memory)
def gray_erode(
    image: Image, weights: Array, anchor: Optional[tuple[int, int]] = None, out: Optional[Array] = None
) -> Array:
    """Gives each pixel the smallest of the pixels under the weights, each plus its weight.

    Parameters are those of `gray_dilate`.

    Returns
    -------
    array like the image

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.gray_erode(numpy.array([[90, 90, 50, 90, 90]], numpy.uint8), numpy.array([[10, 0, 10]]))
    array([[90, 60, 50, 60, 90]], dtype=uint8)
    """
    return _grey(_erode, image, weights, anchor, out)


_scratch: Memo[int] = Memo(
    lambda width, height, dtype: query("lumiMorphReconstructGetBufferSize", SIZE[width, height], CODES[dtype], 1)
)


@whole("a marker grows from one end of the picture to the other")
def morph_reconstruct(
    marker: Image, mask: Image, kind: str = "dilate", connectivity: int = 8, out: Optional[Array] = None
) -> Array:
    """Grows a marker under the limit of a mask until nothing changes.

    Parameters
    ----------
    marker : array of uint8, uint16, float32 or float64
        What grows.
    mask : array like `marker`
        The limit.
    kind : {"dilate", "erode"}
        Whether the marker grows by dilation below the mask, or by erosion above it.
    connectivity : {8, 4}
        The neighbours of a pixel.
    out : array, optional
        Takes the result; may be `marker` itself.

    Returns
    -------
    array like `marker`

    Examples
    --------
    >>> import lumcv, numpy
    >>> mask = numpy.array([[5, 5, 0, 7, 7]], numpy.uint8)
    >>> marker = numpy.array([[0, 3, 0, 0, 0]], numpy.uint8)
    >>> lumcv.morph_reconstruct(marker, mask)
    array([[3, 3, 0, 0, 0]], dtype=uint8)
    """
    if kind not in _reconstruct:
        raise ValueError(f'kind is "dilate" or "erode", not {kind!r}')
    array = of_image(marker, "marker")
    _, _, height, width, channels = source(array, "marker")
    call, dtype, name = _reconstruct[kind][array.dtype, channels]
    limit, limit_step = alike(mask, array, "mask")
    word = neighbourhood(connectivity)
    given = out
    out, result, result_step = target(out, array.shape, dtype)
    if given is not array:
        numpy.copyto(out, array)
    scratch = block(_scratch[width, height, dtype])
    status = call(limit, limit_step, result, result_step, SIZE[width, height], scratch, word)
    if status:
        check(status, name)
    return out
