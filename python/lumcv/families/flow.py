"""Points followed from one picture to the next."""

from typing import NamedTuple, Optional, Sequence, Union

import numpy

from .._array import CODES, FLOAT32, Array, Image, of_image, source
from .._ffi import ffi
from .._library import lib
from .._members import Members
from .._memory import SIZE, block, query
from .._status import check
from .._tiling import whole
from .pyramid import Directory, pyramid

_members = Members("lumiOpticalFlowPyrLK_{s}_C{n}R")
_point = ffi.typeof("LumPoint32f*")

Pictures = Union[Image, Sequence[Array]]


class Flow(NamedTuple):
    """Where points have gone.

    Attributes
    ----------
    points : array of float32, a row (x, y) a point
        The points in the second picture.
    status : array of int8
        0 for a point that was followed to the end; else 1 plus the level at which it was lost.
    error : array of float32
        The remaining difference of the windows, the root of the mean of squares.
    """

    points: Array
    status: Array
    error: Array


@whole("a point may move from one end of the picture to the other")
def optical_flow(
    before: Pictures,
    after: Pictures,
    points: Array,
    guess: Optional[Array] = None,
    window: int = 21,
    levels: int = 3,
    iterations: int = 20,
    threshold: float = 0.01,
    rate: float = 2.0,
) -> Flow:
    """Follows points from one picture to the next, by the method of Lucas and Kanade on pyramids.

    Parameters
    ----------
    before, after : arrays of uint8, uint16 or float32, or lists of them
        The pictures, or pyramids that `pyramid` has made of them with the same `rate`.
    points : array, a row (x, y) a point
        Points of the first picture.
    guess : array like `points`, optional
        Where they may be in the second picture; at the same places unless given.
    window : int
        Side of the window around a point that is compared.
    levels : int
        Levels of the pyramid below the picture itself.
    iterations : int
        The largest number of steps on a level.
    threshold : float
        Length of a step, in pixels of the level, below which a point has arrived.
    rate : float
        How many times smaller than the level above a level is.

    Returns
    -------
    Flow
        `points`, `status` and `error`.

    Examples
    --------
    >>> import lumcv, numpy
    >>> y, x = numpy.mgrid[:64, :64]
    >>> wave = lambda shift: (127 + 50 * numpy.sin((x - shift) / 5) + 50 * numpy.cos(y / 6)).astype(numpy.float32)
    >>> flow = lumcv.optical_flow(wave(0), wave(2), [[30, 32]])
    >>> flow.points.round(1), flow.status
    (array([[32., 32.]], dtype=float32), array([0], dtype=int8))
    """
    pyramids = []
    for pictures in (before, after):
        if isinstance(pictures, (list, tuple)):
            pyramids.append(list(pictures))
        else:
            pyramids.append(pyramid(pictures, levels, rate))  # type: ignore[arg-type]
    array = of_image(pyramids[0][0], "before")
    _, _, height, width, channels = source(array, "before")
    call, dtype, name = _members[array.dtype, channels]
    if [level.shape for level in pyramids[0]] != [level.shape for level in pyramids[1]]:
        raise ValueError("the levels of both pyramids have the same sizes")
    for level in (*pyramids[0], *pyramids[1]):
        if level.dtype != dtype:
            raise TypeError(f"the levels of both pyramids have {dtype}, not {level.dtype}")
    first = numpy.ascontiguousarray(points, FLOAT32)
    if first.ndim != 2 or first.shape[1] != 2:
        raise ValueError("points has a row (x, y) for each point")
    result = numpy.array(first if guess is None else guess, FLOAT32, order="C")
    if result.shape != first.shape:
        raise ValueError(f"guess has the shape {result.shape}; points has {first.shape}")
    count = len(first)
    status, error = numpy.zeros(count, numpy.int8), numpy.zeros(count, FLOAT32)
    directories = [Directory(each, rate) for each in pyramids]
    size = SIZE[width, height]
    memory = block(query("lumiOpticalFlowPyrLKGetSize", window, size, CODES[dtype], 0))
    state = ffi.new("LumOpticalFlowState**")
    initialise = f"lumiOpticalFlowPyrLKInit_{name.split('_')[1]}_C1R"
    check(getattr(lib, initialise)(state, size, window, 0, memory), initialise)
    code = call(
        directories[0].record,
        directories[1].record,
        ffi.cast(_point, ffi.from_buffer("Lum32f[]", first)),
        ffi.cast(_point, ffi.from_buffer("Lum32f[]", result)),
        ffi.from_buffer("Lum8s[]", status),
        ffi.from_buffer("Lum32f[]", error),
        count,
        window,
        min(levels, directories[0].level, directories[1].level),
        iterations,
        threshold,
        state[0],
    )
    if code:
        check(code, name)
    return Flow(result, status, error)
