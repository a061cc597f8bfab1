"""The Canny edge detector."""

from typing import Any, Optional

from .._array import UINT8, Array, Image, alike, of_image, source, target
from .._border import Border, border_word, one_element
from .._members import Members
from .._memory import SIZE, SIZE_L, Memo, block, query
from .._status import check
from .._tiling import whole
from .fixed_filter import mask_word

_members = Members("lumiCannyBorder_{s}_C{n}R")
_of_derivatives = Members("lumiCanny_{s}8u_C{n}R_L")
_plans: Memo[Any] = Memo(
    lambda width, height, kind, mask: query("lumiCannyBorderGetSize", SIZE[width, height], kind, mask, 1)
)
_sizes: Memo[int] = Memo(lambda width, height: query("lumiCannyGetSize_L", SIZE_L[width, height]))
_filters = {"sobel": 2, "scharr": 5}
_norms = {"l1": 2, "l2": 4}
_following = (
    "hysteresis follows an edge from one end of the picture to the other; lumcv.tiles.canny and lumcv.dask.canny do so "
    "across seams"
)


def _norm_word(norm: str) -> int:
    if norm not in _norms:
        raise ValueError(f'norm is "l2" or "l1", not {norm!r}')
    return _norms[norm]


@whole(_following)
def canny(
    image: Image,
    low: float,
    high: float,
    size: int = 3,
    norm: str = "l2",
    filter: str = "sobel",
    border: Border = "replicate",
    border_value: float = 0,
    out: Optional[Array] = None,
) -> Array:
    """Edges one pixel wide.

    Parameters
    ----------
    image : array of uint8
        The image.
    low, high : float
        Ridges of the gradient above `high` are edges, and so are those above `low` that an edge touches.
    size : {3, 5}
        Side of the derivative's kernel.
    norm : {"l2", "l1"}
        What the magnitude of the gradient is: the root of the sum of squares, or the sum of magnitudes.
    filter : {"sobel", "scharr"}
        The derivative's kernel; that of Scharr has the side 3 only.
    border : {"replicate", "constant"} or Region
        What lies outside the image.
    border_value : float
        The value of a constant border.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of uint8
        255 on edges, 0 elsewhere.

    Examples
    --------
    >>> import lumcv, numpy
    >>> step = numpy.repeat(numpy.array([[0, 0, 0, 200, 200, 200]], numpy.uint8), 4, axis=0)
    >>> lumcv.canny(step, low=50, high=100)[1]
    array([  0,   0, 255,   0,   0,   0], dtype=uint8)
    """
    if filter not in _filters:
        raise ValueError(f'filter is "sobel" or "scharr", not {filter!r}')
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, _, name = _members[array.dtype, channels]
    kind, mask = _filters[filter], mask_word(size)
    out, result, result_step = target(out, array.shape, UINT8)
    reach = size // 2
    word = border_word(border, image, array, (reach, reach, reach, reach))
    value = one_element(border, border_value, UINT8)
    scratch = block(_plans[width, height, kind, mask])
    status = call(
        pointer,
        step,
        result,
        result_step,
        SIZE[width, height],
        kind,
        mask,
        word,
        value,
        low,
        high,
        _norm_word(norm),
        scratch,
    )
    if status:
        check(status, name)
    return out


@whole(_following)
def canny_derivatives(
    dx: Image, dy: Image, low: float, high: float, norm: str = "l2", out: Optional[Array] = None
) -> Array:
    """Edges one pixel wide, from the derivatives of an image.

    Parameters
    ----------
    dx, dy : arrays of int16 or float32
        The derivatives: right minus left, below minus above.
    low, high : float
        Ridges of the gradient above `high` are edges, and so are those above `low` that an edge touches.
    norm : {"l2", "l1"}
        What the magnitude of the gradient is: the root of the sum of squares, or the sum of magnitudes.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of uint8
        255 on edges, 0 elsewhere.

    Examples
    --------
    >>> import lumcv, numpy
    >>> step = numpy.repeat(numpy.array([[0, 0, 0, 200, 200, 200]], numpy.uint8), 4, axis=0)
    >>> edges = lumcv.canny_derivatives(lumcv.sobel(step), lumcv.sobel(step, 0, 1), low=50, high=100)
    >>> edges[1]
    array([  0,   0, 255,   0,   0,   0], dtype=uint8)
    """
    array = of_image(dx, "dx")
    pointer, step, height, width, channels = source(array, "dx")
    call, _, name = _of_derivatives[array.dtype, channels]
    second, second_step = alike(dy, array, "dy")
    out, result, result_step = target(out, array.shape, UINT8)
    scratch = block(_sizes[width, height])
    size = SIZE_L[width, height]
    status = call(pointer, step, second, second_step, result, result_step, size, low, high, _norm_word(norm), scratch)
    if status:
        check(status, name)
    return out
