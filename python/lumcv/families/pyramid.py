"""Image pyramids."""

from typing import Any, Optional, Sequence

import numpy

from .._array import FLOAT32, INT16, Array, Image, of_image, source, target
from .._ffi import ffi
from .._library import lib
from .._members import Members
from .._memory import SIZE, Memo, block, queries
from .._status import check
from .._tiling import whole

_down = Members("lumiPyramidLayerDown_{s}_C{n}R")
_up = Members("lumiPyramidLayerUp_{s}_C{n}R")
BINOMIAL = (1, 4, 6, 4, 1)


def _sizes(family: str, suffix: str, width: int, height: int, rate: float, taps: int) -> list[int]:
    """Bytes of a layer's state, and of the block that it is made in."""
    return queries(f"{family}GetSize_{suffix}", SIZE[width, height], rate, taps, count=2)


def _taps(kernel: tuple[float, ...], kind: Any) -> Any:
    """The kernel as the library reads it."""
    taps = numpy.ascontiguousarray(kernel, kind)
    if taps.ndim != 1 or (kind == INT16 and (taps != numpy.asarray(kernel)).any()):
        raise ValueError("kernel has one dimension, and whole numbers of 16 bits for integer images")
    return ffi.from_buffer("Lum32f[]" if kind == FLOAT32 else "Lum16s[]", taps)


_blocks: Memo[list[int]] = Memo(_sizes)
_kernels: Memo[Any] = Memo(_taps)


def _layer(
    members: Members,
    image: Image,
    rate: float,
    kernel: Sequence[float],
    size: tuple[int, int],
    out: Optional[Array],
) -> Array:
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, dtype, name = members[array.dtype, channels]
    family, suffix = name.split("_", 1)
    kind = FLOAT32 if dtype == FLOAT32 else INT16
    try:
        taps = _kernels[tuple(kernel), kind]
    except TypeError:
        raise ValueError("kernel is a sequence of numbers") from None
    region = SIZE[width, height]
    state_bytes, scratch_bytes = _blocks[family, suffix, width, height, rate, len(taps)]
    memory, scratch = block(state_bytes), block(scratch_bytes)
    state = ffi.new(f"{family.replace('lumi', 'Lum')}State**")
    initialise = f"{family}Init_{suffix}"
    check(getattr(lib, initialise)(state, region, rate, taps, len(taps), 2, memory, scratch), initialise, 4)
    shape = (*size, channels) if array.ndim == 3 else size
    out, result, result_step = target(out, shape, dtype)
    status = call(pointer, step, region, result, result_step, SIZE[size[1], size[0]], state[0])
    if status:
        check(status, name, 4)
    return out


def pyramid_size_down(size: tuple[int, int], rate: float = 2.0) -> tuple[int, int]:
    """Height and width of the level below one of a given height and width.

    Parameters
    ----------
    size : tuple of int
        Height and width.
    rate : float
        Above 1 and up to 10.

    Returns
    -------
    tuple of int

    Examples
    --------
    >>> import lumcv
    >>> lumcv.pyramid_size_down((480, 641))
    (240, 321)
    """
    smaller = ffi.new("LumSize*")
    check(lib.lumiGetPyramidDownROI(SIZE[size[1], size[0]], smaller, rate), "lumiGetPyramidDownROI")
    return smaller.height, smaller.width


def pyramid_size_up(size: tuple[int, int], rate: float = 2.0) -> tuple[tuple[int, int], tuple[int, int]]:
    """The least and the most height and width of the level above one of a given height and width.

    Parameters
    ----------
    size : tuple of int
        Height and width.
    rate : float
        Above 1 and up to 10.

    Returns
    -------
    two tuples of int

    Examples
    --------
    >>> import lumcv
    >>> lumcv.pyramid_size_up((240, 320))
    ((479, 639), (480, 640))
    """
    least, most = ffi.new("LumSize*"), ffi.new("LumSize*")
    check(lib.lumiGetPyramidUpROI(SIZE[size[1], size[0]], least, most, rate), "lumiGetPyramidUpROI")
    return (least.height, least.width), (most.height, most.width)


@whole("its result has another size than the picture")
def pyramid_down(
    image: Image, rate: float = 2.0, kernel: Sequence[float] = BINOMIAL, out: Optional[Array] = None
) -> Array:
    """The next smaller level of a pyramid: smoothed, and taken at every rate-th pixel.

    Parameters
    ----------
    image : array of uint8, uint16 or float32, of 1 or 3 channels
        The level.
    rate : float
        Above 1 and up to 10.
    kernel : sequence of numbers
        An odd number of taps, the same forward and backward; it is divided by its sum.
    out : array, optional
        Takes the result, of the size that `pyramid_size_down` tells.

    Returns
    -------
    array of the image's type

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.pyramid_down(numpy.full((6, 10), 50, numpy.uint8))
    array([[50, 50, 50, 50, 50],
           [50, 50, 50, 50, 50],
           [50, 50, 50, 50, 50]], dtype=uint8)
    """
    array = of_image(image)
    smaller = pyramid_size_down((array.shape[0], array.shape[1]), rate) if array.size else (1, 1)
    return _layer(_down, image, rate, kernel, smaller, out)


@whole("its result has another size than the picture")
def pyramid_up(
    image: Image,
    rate: float = 2.0,
    size: Optional[tuple[int, int]] = None,
    kernel: Sequence[float] = BINOMIAL,
    out: Optional[Array] = None,
) -> Array:
    """The next larger level of a pyramid: expanded by interpolation, and smoothed.

    Parameters
    ----------
    image : array of uint8, uint16 or float32, of 1 or 3 channels
        The level.
    rate : float
        Above 1 and up to 10.
    size : tuple of int, optional
        Height and width of the result; the most that `pyramid_size_up` tells, unless given.
    kernel : sequence of numbers
        An odd number of taps, the same forward and backward; it is divided by its sum.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of the image's type

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.pyramid_up(numpy.array([[0, 80]], numpy.uint8))
    array([[20, 40, 60, 40],
           [20, 40, 60, 40]], dtype=uint8)
    """
    array = of_image(image)
    if size is None:
        size = pyramid_size_up((array.shape[0], array.shape[1]), rate)[1] if array.size else (1, 1)
    return _layer(_up, image, rate, kernel, size, out)


@whole("its result has another size than the picture")
def pyramid(image: Image, levels: int = 4, rate: float = 2.0, kernel: Sequence[float] = BINOMIAL) -> list[Array]:
    """An image and smaller and smaller versions of it.

    Parameters
    ----------
    image : array of uint8, uint16 or float32, of 1 or 3 channels
        The image.
    levels : int
        Levels wanted below the image itself; there are fewer where one has a single pixel.
    rate : float
        Above 1 and up to 10.
    kernel : sequence of numbers
        An odd number of taps, the same forward and backward; it is divided by its sum.

    Returns
    -------
    list of arrays
        The first is the image itself, not copied.

    Examples
    --------
    >>> import lumcv, numpy
    >>> [level.shape for level in lumcv.pyramid(numpy.zeros((48, 64), numpy.uint8), levels=3)]
    [(48, 64), (24, 32), (12, 16), (6, 8)]
    """
    built = [of_image(image)]
    for _ in range(levels):
        if built[-1].shape[:2] == (1, 1):
            break
        built.append(pyramid_down(built[-1], rate, kernel))
    return built


class Directory:
    """The record of a pyramid as the library reads it: places, steps and sizes of the levels."""

    def __init__(self, levels: Sequence[Array], rate: float) -> None:
        height, width = levels[0].shape[:2]
        size = SIZE[width, height]
        count = max(len(levels) - 1, 1)
        memory, scratch = queries_of_directory(count, size, rate)
        self.levels = levels
        self.memory = block(memory)
        record = ffi.new("LumPyramid**")
        check(lib.lumiPyramidInit(record, count, size, rate, self.memory, block(scratch)), "lumiPyramidInit")
        self.record = record[0]
        self.level = min(self.record.level, len(levels) - 1)
        for index, level in enumerate(levels[: self.record.level + 1]):
            pointer, step, rows, columns, _ = source(level, "pyramid")
            expected = self.record.rois[index]
            if (rows, columns) != (expected.height, expected.width):
                raise ValueError(
                    f"level {index} of the pyramid has {rows} x {columns} pixels, not {expected.height} x {expected.width}"
                )
            self.record.images[index] = ffi.cast("void*", pointer)
            self.record.steps[index] = step


def queries_of_directory(count: int, size: Any, rate: float) -> list[int]:
    """The sizes of a directory, whose query has its results before its arguments."""
    cells = [ffi.new("Lum32s*") for _ in range(2)]
    check(lib.lumiPyramidGetSize(*cells, count, size, rate), "lumiPyramidGetSize")
    return [cell[0] for cell in cells]
