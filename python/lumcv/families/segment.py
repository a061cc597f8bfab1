"""Regions grown from markers, and boundaries between regions."""

from typing import Optional

import numpy

from .._array import UINT8, Array, Image, of_image, source, target
from .._members import Members
from .._memory import SIZE, Memo, block, query
from .._status import check
from .._tiling import whole
from .grey_morph import neighbourhood

_watershed = Members("lumiSegmentWatershed_{t}_C{n}IR")
_watershed_16 = Members("lumiSegmentWatershed_{s}16u_C{n}IR")
_gradient = Members("lumiSegmentGradient_{s}_C{n}IR")
_bounds = Members("lumiBoundSegments_{s}_C{n}IR")
_queue, _distance, _border4, _border8 = 1, 2, 64, 128
_lengths = {"chessboard": 0, "cityblock": 1, "chamfer": 2, "eikonal": 3}
_scratch: Memo[int] = Memo(lambda name, width, height: query(name, SIZE[width, height]))


def _boundary_flags(boundaries: int) -> int:
    if boundaries not in (0, 4, 8):
        raise ValueError(f"boundaries is 0, 4 or 8, not {boundaries!r}")
    return {0: 0, 4: _border4, 8: _border8}[boundaries]


def _labels(markers: Image, shape: tuple[int, int], kind: Optional[Array], name: str = "markers") -> Array:
    array = of_image(markers, name)
    if array.shape != shape:
        raise ValueError(f"{name} has the shape {array.shape}; the image has {shape[0]} x {shape[1]} pixels")
    if kind is None:
        return numpy.array(array, order="C")
    if kind is not array:
        if kind.shape != shape or kind.dtype != array.dtype:
            raise ValueError(f"out has the shape and the elements of {name}")
        numpy.copyto(kind, array)
    return kind


@whole("a label may reach any pixel from any marker")
def watershed(
    relief: Image,
    markers: Image,
    method: str = "flooding",
    connectivity: int = 8,
    length: str = "chessboard",
    boundaries: int = 0,
    out: Optional[Array] = None,
) -> Array:
    """Grows markers over a relief until every pixel belongs to one.

    Parameters
    ----------
    relief : array of uint8 or float32
        The relief, usually the magnitude of a gradient.
    markers : array of uint8 or uint16; for float32 reliefs uint16
        0 is unlabelled, the largest value of the type is a boundary, all others are labels.
    method : {"flooding", "raster"}
        Whether plateaus are shared out by the order of queues or by distance. Reliefs of float32 take "raster" only.
    connectivity : {8, 4}
        The neighbours of a pixel, for "flooding".
    length : {"chessboard", "cityblock", "chamfer", "eikonal"}
        How ways are measured, for "raster".
    boundaries : {0, 4, 8}
        The neighbours between which boundaries are drawn; 0 for none.
    out : array, optional
        Takes the result; may be `markers` itself.

    Returns
    -------
    array like `markers`

    Examples
    --------
    >>> import lumcv, numpy
    >>> relief = numpy.array([[0, 1, 9, 1, 0]], numpy.uint8)
    >>> markers = numpy.array([[1, 0, 0, 0, 2]], numpy.uint8)
    >>> lumcv.watershed(relief, markers)
    array([[1, 1, 1, 2, 2]], dtype=uint8)
    """
    array = of_image(relief, "relief")
    pointer, step, height, width, channels = source(array, "relief")
    marked = of_image(markers, "markers")
    table = _watershed if marked.dtype == UINT8 and array.dtype == UINT8 else _watershed_16
    call, _, name = table[array.dtype, channels]
    if table is _watershed_16 and marked.dtype != numpy.dtype("uint16"):
        raise TypeError(f"markers over {array.dtype} have uint16{' or uint8' if array.dtype == UINT8 else ''}, not {marked.dtype}")
    if method == "flooding":
        norm, flags = neighbourhood(connectivity), _queue
    elif method == "raster":
        if length not in _lengths:
            raise ValueError(f"length is one of {', '.join(_lengths)}, not {length!r}")
        norm, flags = _lengths[length], _distance
    else:
        raise ValueError(f'method is "flooding" or "raster", not {method!r}')
    flags |= _boundary_flags(boundaries)
    out = _labels(markers, (height, width), out)
    _, result, result_step = target(out, (height, width), marked.dtype)
    scratch = block(_scratch[name.replace("Watershed_", "WatershedGetBufferSize_").replace("IR", "R"), width, height])
    status = call(pointer, step, result, result_step, SIZE[width, height], norm, flags, scratch)
    if status:
        check(status, name)
    return out


@whole("a label may reach any pixel from any marker")
def segment_gradient(
    image: Image, markers: Image, connectivity: int = 8, boundaries: int = 0, out: Optional[Array] = None
) -> Array:
    """Grows markers over a picture, the most similar neighbours first.

    Parameters
    ----------
    image : array of uint8, of 1 or 3 channels
        The picture.
    markers : array of uint8
        0 is unlabelled, 1 to 254 are labels. The outermost pixels take no part.
    connectivity : {8, 4}
        The neighbours of a pixel.
    boundaries : {0, 4, 8}
        The neighbours between which boundaries, of the value 254, are drawn; 0 for none.
    out : array, optional
        Takes the result; may be `markers` itself.

    Returns
    -------
    array of uint8
        Its outermost pixels are 255.

    Examples
    --------
    >>> import lumcv, numpy
    >>> picture = numpy.repeat(numpy.array([[9, 9, 9, 80, 80, 80]], numpy.uint8), 3, axis=0)
    >>> markers = numpy.zeros((3, 6), numpy.uint8)
    >>> markers[1, 1], markers[1, 4] = 1, 2
    >>> lumcv.segment_gradient(picture, markers)[1]
    array([255,   1,   1,   2,   2, 255], dtype=uint8)
    """
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, _, name = _gradient[array.dtype, channels]
    if of_image(markers, "markers").dtype != UINT8:
        raise TypeError(f"markers have uint8, not {of_image(markers, 'markers').dtype}")
    norm, flags = neighbourhood(connectivity), _boundary_flags(boundaries)
    out = _labels(markers, (height, width), out)
    _, result, result_step = target(out, (height, width), UINT8)
    scratch = block(_scratch[f"lumiSegmentGradientGetBufferSize_8u_C{channels}R", width, height])
    status = call(pointer, step, result, result_step, SIZE[width, height], norm, flags, scratch)
    if status:
        check(status, name)
    return out


@whole("a boundary depends on those that were drawn before it")
def bound_segments(labels: Image, value: int, connectivity: int = 8, out: Optional[Array] = None) -> Array:
    """Draws boundaries between the regions of a labelled image.

    Parameters
    ----------
    labels : array of uint8 or uint16
        The labels.
    value : int
        What boundaries become.
    connectivity : {8, 4}
        The neighbours of a pixel.
    out : array, optional
        Takes the result; may be `labels` itself.

    Returns
    -------
    array like `labels`

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.bound_segments(numpy.array([[1, 1, 2, 2]], numpy.uint8), 255)
    array([[  1,   1, 255,   2]], dtype=uint8)
    """
    array = of_image(labels, "labels")
    _, _, height, width, channels = source(array, "labels")
    call, dtype, name = _bounds[array.dtype, channels]
    norm = neighbourhood(connectivity)
    limit = numpy.iinfo(dtype).max
    if not 0 <= value <= limit:
        raise ValueError(f"value lies outside of {dtype}")
    out = _labels(labels, (height, width), out, "labels")
    _, result, result_step = target(out, (height, width), dtype)
    status = call(result, result_step, SIZE[width, height], value, norm)
    if status:
        check(status, name)
    return out
