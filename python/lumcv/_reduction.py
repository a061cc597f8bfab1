"""Numbers that are told by the parts of a picture: what a part contributes, and how contributions are combined."""

import math
from typing import Any, Callable, Iterator, NamedTuple, Optional, Sequence

import numpy

from ._array import FLOAT32, Array
from ._status import check
from .families.norms import norm
from .families.stats import Extremes, MeanStdDev, by_channel, mean, mean_stddev, min_max

#: Pixels of which the root of a sum of squares, squared and rounded, is the exact sum again.
_exact_pixels = 2**18


class Share(NamedTuple):
    """What a part contributes, a value for each channel that is looked at."""

    values: tuple[Any, ...]
    single: bool
    exact: bool


def _pieces(shape: tuple[int, ...]) -> Iterator[tuple[slice, slice]]:
    height, width = shape[:2]
    columns = min(width, _exact_pixels)
    rows = max(1, _exact_pixels // max(columns, 1))
    for y in range(0, height, rows):
        for x in range(0, width, columns):
            yield slice(y, y + rows), slice(x, x + columns)


def _sum(image: Array, kind: str, channel: Optional[int], mask: Optional[Array], other: Optional[Array]) -> Any:
    """The exact sum of magnitudes or of squares of integers; of floats, the sum in double precision."""
    total: Any = 0.0 if image.dtype == FLOAT32 else 0
    for piece in _pieces(image.shape):
        value = norm(
            image[piece],
            None if other is None else other[piece],
            kind,
            None if mask is None else mask[piece],
            channel,
        )
        if kind == "l2":
            value = value * value
        total += value if image.dtype == FLOAT32 else round(value)
    return total


def _count(image: Array, mask: Optional[Array]) -> int:
    return image.shape[0] * image.shape[1] if mask is None else int(numpy.count_nonzero(mask))


def _share(image: Array, channel: Optional[int], one: Callable[[Optional[int]], Any]) -> Share:
    channels = image.shape[2] if image.ndim == 3 else 1
    found = by_channel(channels, channel, lambda each: [one(each)])
    single = isinstance(found, list)
    return Share(tuple(each[0] for each in ([found] if single else found)), single, image.dtype != FLOAT32)


def _moments(
    place: tuple[int, int], image: Array, mask: Optional[Array] = None, channel: Optional[int] = None
) -> Share:
    def one(each: Optional[int]) -> Any:
        if image.dtype == FLOAT32:
            result = mean_stddev(image, mask, each)
            return _count(image, mask), result
        return _count(image, mask), _sum(image, "l1", each, mask, None), _sum(image, "l2", each, mask, None)

    return _share(image, channel, one)


def _mean_stddev(shares: Sequence[Any], exact: bool) -> MeanStdDev:
    count = sum(share[0] for share in shares)
    if count == 0:
        return MeanStdDev(0.0, 0.0)
    if exact:
        centre = float(sum(share[1] for share in shares)) / float(count)
        squares = float(sum(share[2] for share in shares)) / float(count)
        return MeanStdDev(centre, math.sqrt(abs(squares - centre * centre)))
    centre = math.fsum(share[0] * share[1].mean for share in shares) / count
    spread = math.fsum(share[0] * (share[1].stddev ** 2 + (share[1].mean - centre) ** 2) for share in shares)
    return MeanStdDev(centre, math.sqrt(spread / count))


def _mean(shares: Sequence[Any], exact: bool) -> float:
    return _mean_stddev(shares, exact).mean


class _NormShare(NamedTuple):
    kind: str
    relative: bool
    value: Any
    other: Any


def _norm_share(
    place: tuple[int, int],
    image: Array,
    other: Optional[Array] = None,
    kind: str = "l2",
    mask: Optional[Array] = None,
    channel: Optional[int] = None,
    relative: bool = False,
) -> Share:
    def measure(first: Array, second: Optional[Array], each: Optional[int]) -> Any:
        if kind == "inf":
            return norm(first, second, kind, mask, each)
        return _sum(first, kind, each, mask, second)

    if relative and other is None:
        raise ValueError("a relative norm is that of a difference: it needs another image")

    def one(each: Optional[int]) -> _NormShare:
        second = measure(other, None, each) if relative and other is not None else None
        return _NormShare(kind, relative, measure(image, other, each), second)

    return _share(image, channel, one)


def _norm(shares: Sequence[_NormShare], exact: bool) -> float:
    kind, relative = shares[0].kind, shares[0].relative
    gather: Any = max if kind == "inf" else sum if exact else math.fsum
    value = float(gather([share.value for share in shares]))
    if relative:
        divisor = float(gather([share.other for share in shares]))
        if divisor == 0:
            check(2, "lumiNormRel_L2_8u_C1MR")
            return math.inf if value > 0 else math.nan
        value /= divisor
    return math.sqrt(value) if kind == "l2" else value


def _extremes_share(
    place: tuple[int, int], image: Array, mask: Optional[Array] = None, channel: Optional[int] = None
) -> Share:
    def one(each: Optional[int]) -> Optional[Extremes]:
        if _count(image, mask) == 0:
            return None
        found = min_max(image, mask, each)
        assert isinstance(found, Extremes)
        # A place of a part is one of the picture, except where there is none.
        low, high = (
            (at[0] + place[0], at[1] + place[1]) if at[1] >= 0 else at for at in (found.min_at, found.max_at)
        )
        return Extremes(found.min, found.max, low, high)

    return _share(image, channel, one)


def _extremes(shares: Sequence[Optional[Extremes]], exact: bool) -> Extremes:
    found = [share for share in shares if share is not None]
    if not found:
        check(1, "lumiMinMaxIndx_8u_C1MR")
        return Extremes(0.0, 0.0, (0, 0), (0, 0))
    low = min(found, key=lambda each: (each.min, each.min_at[1] < 0, each.min_at))
    high = min(found, key=lambda each: (-each.max, each.max_at[1] < 0, each.max_at))
    return Extremes(low.min, high.max, low.min_at, high.max_at)


def _nonzero_share(place: tuple[int, int], image: Array) -> Share:
    return Share((int(numpy.count_nonzero(image)),), True, True)


def _nonzero(shares: Sequence[int], exact: bool) -> int:
    return sum(shares)


_reductions: dict[Any, tuple[Callable[..., Share], Callable[..., Any]]] = {
    mean: (_moments, _mean),
    mean_stddev: (_moments, _mean_stddev),
    norm: (_norm_share, _norm),
    min_max: (_extremes_share, _extremes),
    numpy.count_nonzero: (_nonzero_share, _nonzero),
}


def reduction_of(operation: Any) -> tuple[Callable[..., Share], Callable[[Sequence[Share]], Any]]:
    """What a part contributes to a number, and how the contributions become the number."""
    if operation not in _reductions:
        names = ", ".join(each.__name__ for each in _reductions)
        raise TypeError(f"{getattr(operation, '__name__', operation)} is not told by parts; these are: {names}")
    share, gather = _reductions[operation]

    def combine(shares: Sequence[Share]) -> Any:
        results = [gather(list(each), shares[0].exact) for each in zip(*(share.values for share in shares))]
        return results[0] if shares[0].single else tuple(results)

    return share, combine
