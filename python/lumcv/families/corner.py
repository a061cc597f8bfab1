"""Corner measures, peaks and the suppression of features along lines."""

from typing import Any, Optional

import numpy

from .._array import CODES, FLOAT32, INT32, UINT8, Array, Image, alike, element, of_image, source, target
from .._border import Border, border_word
from .._documentation import parameters_of
from .._ffi import ffi
from .._members import Members
from .._memory import SIZE, Memo, block, query
from .._status import check
from .._tiling import Tiling, tiled, whole
from .fixed_filter import mask_word
from .grey_morph import neighbourhood

_harris = Members("lumiHarrisCorner_{t}_C{n}R")
_smaller = Members("lumiMinEigenValBorder_{t}_C{n}R")
_vectors = Members("lumiEigenValsVecsBorder_{t}_C{n}R")
_peaks = Members("lumiFindPeaks3x3_{s}_C{n}R")
_suppress = Members("lumiLineSuppression_{s}_C{n}R")

_filters = {"sobel": 2, "scharr": 5, "central": 8}
_kernels = {"sobel": 2, "scharr": 1}


def _word(words: dict[str, int], word: str) -> int:
    if word not in words:
        raise ValueError(f"filter is one of {', '.join(words)}, not {word!r}")
    return words[word]


_harris_scratch: Memo[int] = Memo(
    lambda width, height, mask, window, dtype: query(
        "lumiHarrisCornerGetBufferSize", SIZE[width, height], mask, window, CODES[dtype], 1
    )
)
_line_scratch: Memo[int] = Memo(
    lambda width, height, mask, window: query(
        "lumiLineSuppressionGetBufferSize", SIZE[width, height], mask, window, 1, 1
    )
)
_eigen_scratch: Memo[int] = Memo(
    lambda width, height, size, window, types: query(
        f"lumiMinEigenValGetBufferSize_{types}_C1R", SIZE[width, height], size, window
    )
)
_peak_scratch: Memo[int] = Memo(lambda width, token: query(f"lumiFindPeaks3x3GetBufferSize_{token}_C1R", width))


def _window_tiling(size: int = 3, window: int = 3, **keywords: Any) -> Tiling:
    above, below = size // 2 + window // 2, size // 2 + (window - 1) // 2
    return Tiling((above, below, above, below))


def _grown_tiling(size: int = 3, window: int = 3, **keywords: Any) -> Tiling:
    # Products outside of a region are made up even where its pixels are read from memory, so a part is run larger.
    reach = size // 2
    return Tiling((reach, reach, reach, reach), window // 2)


@tiled(_window_tiling)
def harris(
    image: Image,
    k: float = 0.04,
    size: int = 3,
    window: int = 3,
    scale: float = 1.0,
    filter: str = "sobel",
    border: Border = "replicate",
    border_value: float = 0,
    out: Optional[Array] = None,
) -> Array:
    """The Harris response: large and positive at corners, negative along edges, small on flat ground.

    Parameters
    ----------
    image : array of uint8 or float32
        The image.
    k : float
        Share of the squared trace that is taken from the determinant, usually 0.04 to 0.06.
    size : {3, 5}
        Side of the derivative's kernel.
    window : int
        Side of the window over which products of derivatives are summed.
    scale : float
        Factor of the response.
    filter : {"sobel", "scharr", "central"}
        The derivative's kernel; those of Scharr and of central differences have the side 3 only.
    border : {"replicate", "mirror", "constant"} or Region
        What lies outside the image.
    border_value : float
        The value of a constant border.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of float32

    Examples
    --------
    >>> import lumcv, numpy
    >>> square = numpy.zeros((12, 12), numpy.uint8)
    >>> square[4:, 4:] = 200
    >>> lumcv.min_max(lumcv.harris(square)).max_at
    (4, 4)
    """
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, dtype, name = _harris[array.dtype, channels]
    kind, mask = _word(_filters, filter), mask_word(size)
    out, result, result_step = target(out, array.shape, dtype)
    word = border_word(border, image, array, _window_tiling(size, window).reach)
    value = element(border_value, UINT8, "border_value") if border == "constant" else 0
    scratch = block(_harris_scratch[width, height, mask, window, array.dtype])
    status = call(
        pointer,
        step,
        result,
        result_step,
        SIZE[width, height],
        kind,
        mask,
        window,
        k,
        scale,
        word,
        value,
        scratch,
    )
    if status:
        check(status, name)
    return out


def _eigen(
    members: Members,
    image: Image,
    size: int,
    window: int,
    filter: str,
    border: Border,
    border_value: float,
    out: Optional[Array],
    elements: int,
) -> Array:
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, dtype, name = members[array.dtype, channels]
    shape = (height, width) if elements == 1 else (height, width, elements)
    out, result, result_step = target(out, shape, dtype)
    reach = size // 2
    word = border_word(border, image, array, (reach, reach, reach, reach))
    value = element(border_value, UINT8, "border_value") if border == "constant" else 0
    types = name.split("_")[1]
    scratch = block(_eigen_scratch[width, height, size, window, types])
    kind = _word(_kernels, filter)
    arguments = (pointer, step, result, result_step, SIZE[width, height], kind, size, window, word, value, scratch)
    status = call(*arguments)
    if status:
        check(status, name, 4)
    return out


@tiled(_grown_tiling)
def min_eigen(
    image: Image,
    size: int = 3,
    window: int = 3,
    filter: str = "sobel",
    border: Border = "replicate",
    border_value: float = 0,
    out: Optional[Array] = None,
) -> Array:
    """The smaller eigenvalue of the covariance of gradients: large at corners, small elsewhere.

    Parameters
    ----------
    image : array of uint8 or float32
        The image.
    size : {3, 5}
        Side of the derivative's kernel.
    window : {3, 5}
        Side of the window over which products of derivatives are averaged.
    filter : {"sobel", "scharr"}
        The derivative's kernel; that of Scharr has the side 3 only.
    border : {"replicate", "mirror", "default", "constant"} or Region
        What lies outside the image for derivatives. Products of derivatives outside are of the same kind, and 0 where it
        is constant.
    border_value : float
        The value of a constant border.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of float32

    Examples
    --------
    >>> import lumcv, numpy
    >>> square = numpy.zeros((12, 12), numpy.uint8)
    >>> square[4:, 4:] = 200
    >>> lumcv.min_max(lumcv.min_eigen(square)).max_at
    (4, 4)
    """
    return _eigen(_smaller, image, size, window, filter, border, border_value, out, 1)


@tiled(_grown_tiling)
@parameters_of(min_eigen)
def eigen_vectors(
    image: Image,
    size: int = 3,
    window: int = 3,
    filter: str = "sobel",
    border: Border = "replicate",
    border_value: float = 0,
    out: Optional[Array] = None,
) -> Array:
    """Both eigenvalues of the covariance of gradients, with their vectors.

    Parameters are those of `min_eigen`.

    Returns
    -------
    array of float32, six elements a pixel
        The larger eigenvalue, the smaller one, and the vectors (x, y) of the first and of the second.

    Examples
    --------
    >>> import lumcv, numpy
    >>> square = numpy.zeros((12, 12), numpy.uint8)
    >>> square[4:, 4:] = 200
    >>> lumcv.eigen_vectors(square).shape
    (12, 12, 6)
    """
    return _eigen(_vectors, image, size, window, filter, border, border_value, out, 6)


@whole("it makes a list of places")
def find_peaks(
    image: Image, threshold: float, connectivity: int = 8, margin: int = 1, count: Optional[int] = None
) -> Array:
    """The places of the local extremes of an image, row by row.

    Parameters
    ----------
    image : array of float32 or int32
        The image, such as a corner measure.
    threshold : float
        Extremes of a magnitude not above it are left out.
    connectivity : {8, 4}
        The neighbours of a pixel.
    margin : int
        Rows and columns left out at each side, 1 or more.
    count : int, optional
        The largest number of places; all of them unless given.

    Returns
    -------
    array of int32, a row (x, y) a place

    Examples
    --------
    >>> import lumcv, numpy
    >>> response = numpy.zeros((5, 5), numpy.float32)
    >>> response[2, 3] = 7
    >>> lumcv.find_peaks(response, threshold=1)
    array([[3, 2]], dtype=int32)
    """
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, dtype, name = _peaks[array.dtype, channels]
    limit = threshold if dtype == FLOAT32 else int(threshold)
    word = neighbourhood(connectivity)
    most = max(height * width, 1) if count is None else count
    places = numpy.empty((max(most, 1), 2), INT32)
    found = ffi.new("int*")
    scratch = block(_peak_scratch[width, "32f" if dtype == FLOAT32 else "32s"])
    list_pointer = ffi.cast("LumPoint*", ffi.from_buffer("Lum32s[]", places))
    size = SIZE[width, height]
    status = call(pointer, step, size, limit, list_pointer, most, found, word, margin, scratch)
    if status:
        check(status, name)
    return places[: found[0]].copy()


@tiled(_window_tiling)
def line_suppression(
    image: Image,
    features: Image,
    threshold: int,
    size: int = 3,
    window: int = 3,
    filter: str = "sobel",
    border: Border = "replicate",
    border_value: float = 0,
    out: Optional[Array] = None,
) -> Array:
    """Clears the features that lie along lines of an image.

    Parameters
    ----------
    image : array of uint8
        The image.
    features : array of uint8
        The features found in it.
    threshold : int
        The least share of the smaller eigenvalue in the larger one, in parts of 255, where a feature stays.
    size : {3, 5}
        Side of the derivative's kernel.
    window : int
        Side of the window over which products of derivatives are summed.
    filter : {"sobel", "scharr", "central"}
        The derivative's kernel; those of Scharr and of central differences have the side 3 only.
    border : {"replicate", "constant"} or Region
        What lies outside the image.
    border_value : float
        The value of a constant border.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of uint8

    Examples
    --------
    >>> import lumcv, numpy
    >>> step = numpy.zeros((8, 8), numpy.uint8)
    >>> step[:, 4:] = 200
    >>> int(lumcv.line_suppression(step, numpy.full((8, 8), 64, numpy.uint8), threshold=20)[4, 4])
    0
    """
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, dtype, name = _suppress[array.dtype, channels]
    kind, mask = _word(_filters, filter), mask_word(size)
    second, second_step = alike(features, array, "features")
    out, result, result_step = target(out, array.shape, dtype)
    word = border_word(border, image, array, _window_tiling(size, window).reach)
    value = element(border_value, UINT8, "border_value") if border == "constant" else 0
    scratch = block(_line_scratch[width, height, mask, window])
    status = call(
        pointer,
        step,
        second,
        second_step,
        result,
        result_step,
        SIZE[width, height],
        kind,
        mask,
        window,
        element(threshold, UINT8, "threshold"),
        word,
        value,
        scratch,
    )
    if status:
        check(status, name)
    return out
