"""Connected regions: filling, labelling, and small ones."""

from typing import Any, NamedTuple, Optional, Sequence, Union

import numpy

from .._array import CODES, INT32, UINT8, Array, Image, element, elements, of_image, source, target
from .._ffi import ffi
from .._library import lib
from .._members import Members
from .._memory import SIZE, Memo, block, query
from .._status import check
from .._tiling import whole
from .grey_morph import neighbourhood

Value = Union[float, Sequence[float]]
_fills = {
    (rule, count): Members(f"lumiFloodFill_{rule}{count}Con_{{s}}_C{{n}}IR")
    for rule in ("", "Range", "Grad")
    for count in (4, 8)
}
_scratch: Memo[int] = Memo(lambda name, width, height: query(name, SIZE[width, height]))
_labels_in_place = Members("lumiLabelMarkers_{s}_C{n}IR")
_speckles = Members("lumiMarkSpeckles_{s}_C{n}IR")
_speckle_scratch: Memo[int] = Memo(
    lambda width, height, dtype, channels: query(
        "lumiMarkSpecklesGetBufferSize", SIZE[width, height], CODES[dtype], channels
    )
)


class Filled(NamedTuple):
    """What a fill has done.

    Attributes
    ----------
    image : array
        The filled image.
    area : int
        Pixels of all runs that were filled.
    rect : tuple of int
        The bounding box (x, y, width, height) of what was filled.
    """

    image: Array
    area: int
    rect: tuple[int, int, int, int]


def _copied(array: Array, out: Optional[Array]) -> tuple[Array, Any, int]:
    given = out
    out, pointer, step = target(out, array.shape, array.dtype)
    if given is not array:
        numpy.copyto(out, array)
    return out, pointer, step


@whole("a region may reach from one end of the picture to the other")
def flood_fill(
    image: Image,
    seed: tuple[int, int],
    value: Value,
    delta: Union[None, Value, tuple[Value, Value]] = None,
    floating: bool = False,
    connectivity: int = 4,
    out: Optional[Array] = None,
) -> Filled:
    """Fills the connected region around a seed pixel.

    Parameters
    ----------
    image : array of uint8, uint16 or float32 (1 or 3 channels), or int32
        The image.
    seed : tuple of int
        (x, y) of a pixel of the region.
    value : number, or one for each channel
        What the region becomes.
    delta : number, or a pair (below, above), optional
        How far a pixel may lie below and above the seed's, each one number or one for each channel. Without it, pixels equal
        the seed's.
    floating : bool
        Whether pixels are compared with their neighbour in the region, not with the seed's.
    connectivity : {4, 8}
        The neighbours of a pixel.
    out : array, optional
        Takes the result; may be the image itself.

    Returns
    -------
    Filled
        `image`, `area` and `rect`.

    Examples
    --------
    >>> import lumcv, numpy
    >>> filled = lumcv.flood_fill(numpy.array([[1, 1, 5, 1]], numpy.uint8), seed=(0, 0), value=9)
    >>> filled.image, filled.area, filled.rect
    (array([[9, 9, 5, 1]], dtype=uint8), 2, (0, 0, 2, 1))
    """
    array = of_image(image)
    _, _, height, width, channels = source(array)
    neighbourhood(connectivity)
    if floating and delta is None:
        raise ValueError("a floating comparison needs a delta")
    rule = "" if delta is None else "Grad" if floating else "Range"
    call, dtype, name = _fills[rule, connectivity][array.dtype, channels]
    make = elements if channels > 1 else element

    def pixel(number: Value, what: str) -> Any:
        return elements(number, channels, dtype, what) if make is elements else element(number, dtype, what)  # type: ignore[arg-type]

    values = [pixel(value, "value")]
    if delta is not None:
        pair = delta if isinstance(delta, tuple) else (delta, delta)
        if len(pair) != 2:
            raise ValueError("delta is one number, or a pair (below, above)")
        values += [pixel(each, "delta") for each in pair]
    size_name = "lumiFloodFillGetSize_Grad" if floating else "lumiFloodFillGetSize"
    scratch = block(_scratch[size_name, width, height])
    out, result, result_step = _copied(array, out)
    record = ffi.new("LumFillRegion*")
    place = ffi.new("LumPoint*", tuple(seed))[0]
    status = call(result, result_step, SIZE[width, height], place, *values, record, scratch)
    if status:
        check(status, name)
    rect = record.rect
    return Filled(out, int(record.area), (rect.x, rect.y, rect.width, rect.height))


@whole("a region may reach from one end of the picture to the other")
def label(
    image: Image,
    connectivity: int = 8,
    dtype: Any = "int32",
    first: int = 1,
    last: Optional[int] = None,
    out: Optional[Array] = None,
) -> tuple[Array, int]:
    """Gives each connected region of pixels other than 0 a label of its own.

    Parameters
    ----------
    image : array of uint8 or bool; of uint16 with labels of uint16
        The image.
    connectivity : {8, 4}
        The neighbours of a pixel.
    dtype : int32, uint16 or uint8
        Element type of the labels. Where it is that of the image, regions are made of equal pixels.
    first, last : int
        The first label, and the last one, after which labels begin again with the first.
    out : array, optional
        Takes the labels; with labels of the image's type it may be the image itself.

    Returns
    -------
    labels : array of `dtype`
    count : int
        The number of regions, which may be more than there are labels.

    Examples
    --------
    >>> import lumcv, numpy
    >>> labels, count = lumcv.label(numpy.array([[7, 7, 0, 7, 0, 7]], numpy.uint8))
    >>> labels, count
    (array([[1, 1, 0, 2, 0, 3]], dtype=int32), 3)
    """
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    kind = numpy.dtype(dtype)
    word = neighbourhood(connectivity)
    count = ffi.new("Lum32s*")
    size = SIZE[width, height]
    if kind == INT32:
        if array.dtype not in (UINT8, numpy.dtype(bool)) or channels != 1:
            raise TypeError(
                f"labels of int32 are for uint8 or bool with 1 channel, not for {array.dtype} with {channels}"
            )
        last = 0x7FFFFFFE if last is None else last
        out, result, result_step = target(out, array.shape, kind)
        scratch = block(_scratch["lumiLabelMarkersGetBufferSize_8u32s_C1R", width, height])
        name = "lumiLabelMarkers_8u32s_C1R"
        status = lib.lumiLabelMarkers_8u32s_C1R(
            pointer, step, result, result_step, size, first, last, word, count, scratch
        )
    else:
        if kind != array.dtype:
            raise TypeError(f"labels of {array.dtype} images have int32 (from uint8) or {array.dtype}, not {kind}")
        call, _, name = _labels_in_place[array.dtype, channels]
        last = numpy.iinfo(kind).max - 1 if last is None else last
        out, result, result_step = _copied(array, out)
        scratch = block(_scratch[name.replace("Markers_", "MarkersGetBufferSize_").replace("IR", "R"), width, height])
        status = call(result, result_step, size, first, last, word, count, scratch)
    if status:
        check(status, name)
    return out, count[0]


@whole("a region may reach from one end of the picture to the other")
def mark_speckles(image: Image, value: float, size: int, difference: float, out: Optional[Array] = None) -> Array:
    """Writes a value over every region that is too small to be true.

    Parameters
    ----------
    image : array of uint8, uint16, int16 or float32
        The image, such as a map of disparities.
    value : number
        What speckles become; pixels that have it already are in no region.
    size : int
        The largest number of pixels of a speckle.
    difference : number
        The largest difference between neighbours of a region.
    out : array, optional
        Takes the result; may be the image itself.

    Returns
    -------
    array like the image

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.mark_speckles(numpy.array([[8, 8, 8, 90, 8, 8]], numpy.uint8), value=0, size=2, difference=1)
    array([[8, 8, 8, 0, 0, 0]], dtype=uint8)
    """
    array = of_image(image)
    _, _, height, width, channels = source(array)
    call, dtype, name = _speckles[array.dtype, channels]
    limit = element(difference, dtype, "difference")
    mark = element(value, dtype, "value")
    region = SIZE[width, height]
    scratch = block(_speckle_scratch[width, height, dtype, channels])
    out, result, result_step = _copied(array, out)
    status = call(result, result_step, region, mark, size, limit, 1, scratch)
    if status:
        check(status, name)
    return out
