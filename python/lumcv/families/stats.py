"""Means, deviations and extreme values."""

from typing import Any, Callable, NamedTuple, Optional, TypeVar, Union

from .._array import Image, of_image, of_mask, source
from .._ffi import ffi
from .._members import Members
from .._memory import SIZE
from .._status import check
from .._tiling import whole

_mean_masked = Members("lumiMean_{s}_C{n}MR")
_mean_masked_channel = Members("lumiMean_{s}_C{n}CMR")
_deviation = Members("lumiMean_StdDev_{s}_C{n}R")
_deviation_masked = Members("lumiMean_StdDev_{s}_C{n}MR")
_deviation_channel = Members("lumiMean_StdDev_{s}_C{n}CR")
_deviation_masked_channel = Members("lumiMean_StdDev_{s}_C{n}CMR")
_extremes = Members("lumiMinMaxIndx_{s}_C{n}R")
_extremes_masked = Members("lumiMinMaxIndx_{s}_C{n}MR")
_extremes_channel = Members("lumiMinMaxIndx_{s}_C{n}CR")
_extremes_masked_channel = Members("lumiMinMaxIndx_{s}_C{n}CMR")

_double = ffi.typeof("Lum64f*")
_floats = ffi.typeof("Lum32f[2]")
_points = ffi.typeof("LumPoint[2]")
_null = ffi.NULL
Value = TypeVar("Value")


class MeanStdDev(NamedTuple):
    """The mean and the standard deviation of the pixels of a region."""

    mean: float
    stddev: float


class Extremes(NamedTuple):
    """The smallest and the largest value of a region, and the row and column where each is found first."""

    min: float
    max: float
    min_at: tuple[int, int]
    max_at: tuple[int, int]


def by_channel(channels: int, channel: Optional[int], one: Callable[[Optional[int]], Value]) -> Any:
    """What a function of a channel tells of the only one, of the one asked for, or of each in a tuple."""
    if channels == 1 and channel is None:
        return one(None)
    if channel is not None:
        return one(channel)
    return tuple(one(each) for each in range(channels))


def _run(
    image: Image, mask: Optional[Image], channel: Optional[int], tables: tuple[Members, ...], cells: tuple[Any, ...]
) -> None:
    """Calls the member of a family: plain, under a mask, of one channel, of one channel under a mask."""
    array = of_image(image)
    pointer, step, height, width, channels = source(array)
    call, _, name = tables[(mask is not None) + 2 * (channel is not None)][array.dtype, channels]
    arguments = [pointer, step]
    if mask is not None:
        arguments += of_mask(mask, height, width)
    arguments.append(SIZE[width, height])
    if channel is not None:
        arguments.append(channel + 1)
    status = call(*arguments, *cells)
    if status:
        check(status, name, 6)


def _channels(image: Image) -> int:
    shape = of_image(image).shape
    return shape[2] if len(shape) == 3 else 1


@whole("it tells a number; reduce in lumcv.tiles and lumcv.dask combines those of parts")
def mean(image: Image, mask: Optional[Image] = None, channel: Optional[int] = None) -> Any:
    """The mean of the pixels of an image.

    Parameters
    ----------
    image : array of uint8, uint16 or float32, of 1 or 3 channels
        The image.
    mask : array of uint8 or bool, optional
        Pixels where it is 0 are left out. Where it leaves none, the mean is 0.
    channel : int, optional
        The channel looked at, 0 to 2.

    Returns
    -------
    float, or a tuple of three where there are three channels and none is named
        Sums of integers are exact.

    Examples
    --------
    >>> import lumcv, numpy
    >>> picture = numpy.array([[10, 20], [30, 40]], numpy.uint8)
    >>> lumcv.mean(picture)
    25.0
    >>> lumcv.mean(picture, mask=picture > 15)
    30.0
    """

    def one(each: Optional[int]) -> float:
        result = ffi.new(_double)
        if mask is None:
            _run(image, None, each, (_deviation, _deviation, _deviation_channel), (result, _null))
        else:
            _run(image, mask, each, (_deviation, _mean_masked, _deviation, _mean_masked_channel), (result,))
        value: float = result[0]
        return value

    return by_channel(_channels(image), channel, one)


@whole("it tells a number; reduce in lumcv.tiles and lumcv.dask combines those of parts")
def mean_stddev(
    image: Image, mask: Optional[Image] = None, channel: Optional[int] = None
) -> Union[MeanStdDev, tuple[MeanStdDev, ...]]:
    """The mean and the standard deviation of the pixels of an image.

    Parameters
    ----------
    image : array of uint8, uint16 or float32, of 1 or 3 channels
        The image.
    mask : array of uint8 or bool, optional
        Pixels where it is 0 are left out. Where it leaves none, both are 0.
    channel : int, optional
        The channel looked at, 0 to 2.

    Returns
    -------
    MeanStdDev, or a tuple of three where there are three channels and none is named

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.mean_stddev(numpy.array([[1, 3], [1, 3]], numpy.uint8))
    MeanStdDev(mean=2.0, stddev=1.0)
    """

    def one(each: Optional[int]) -> MeanStdDev:
        centre, spread = ffi.new(_double), ffi.new(_double)
        tables = (_deviation, _deviation_masked, _deviation_channel, _deviation_masked_channel)
        _run(image, mask, each, tables, (centre, spread))
        return MeanStdDev(centre[0], spread[0])

    result: Union[MeanStdDev, tuple[MeanStdDev, ...]] = by_channel(_channels(image), channel, one)
    return result


@whole("it tells a number; reduce in lumcv.tiles and lumcv.dask combines those of parts")
def min_max(
    image: Image, mask: Optional[Image] = None, channel: Optional[int] = None
) -> Union[Extremes, tuple[Extremes, ...]]:
    """The smallest and the largest value of an image, with their places.

    Parameters
    ----------
    image : array of uint8, uint16 or float32, of 1 or 3 channels
        The image. A NaN is passed over.
    mask : array of uint8 or bool, optional
        Pixels where it is 0 are left out. Where it leaves none, there is a warning, and all results are 0.
    channel : int, optional
        The channel looked at, 0 to 2.

    Returns
    -------
    Extremes, or a tuple of three where there are three channels and none is named
        Each place is (row, column), the first one from the top and from the left.

    Examples
    --------
    >>> import lumcv, numpy
    >>> lumcv.min_max(numpy.array([[10, 40], [5, 40]], numpy.uint8))
    Extremes(min=5.0, max=40.0, min_at=(1, 0), max_at=(0, 1))
    """

    def one(each: Optional[int]) -> Extremes:
        values, places = ffi.new(_floats), ffi.new(_points)
        tables = (_extremes, _extremes_masked, _extremes_channel, _extremes_masked_channel)
        _run(image, mask, each, tables, (values, values + 1, places, places + 1))
        low, high = places
        return Extremes(values[0], values[1], (low.y, low.x), (high.y, high.x))

    result: Union[Extremes, tuple[Extremes, ...]] = by_channel(_channels(image), channel, one)
    return result
