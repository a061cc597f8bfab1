"""What an operation reads beyond a pixel, by which it may be run on the parts of a picture."""

import inspect
from typing import Any, Callable, NamedTuple, Optional, TypeVar

from ._array import Array, Region

Function = TypeVar("Function", bound=Callable[..., Any])


class Tiling(NamedTuple):
    """How the parts of a picture are run so that their results are those of the whole.

    Attributes
    ----------
    reach : tuple of int
        Rows above and below, columns at the left and at the right that are read beyond a pixel.
    grow : int
        Rows and columns by which a part is run larger than it is kept, because the operation does not read all that it
        depends on from memory.
    """

    reach: tuple[int, int, int, int] = (0, 0, 0, 0)
    grow: int = 0


_tilings: dict[Any, Callable[..., Tiling]] = {}
_reasons: dict[Any, str] = {}
_in_place: set[Any] = set()


def tiled(tiling: Callable[..., Tiling]) -> Callable[[Function], Function]:
    """Says of an operation how it is run in parts, from the keyword arguments that it is called with."""

    def mark(function: Function) -> Function:
        _tilings[function] = tiling
        return function

    return mark


def pixelwise(function: Function) -> Function:
    """Says of an operation that each pixel of its result depends on the pixel at its place alone."""
    _tilings[function] = lambda **keywords: Tiling()
    return function


def in_place(function: Function) -> Function:
    """Says of an operation on single pixels that it changes an argument and returns it."""
    _in_place.add(function)
    return pixelwise(function)


def changes_arguments(operation: Any) -> bool:
    """Whether an operation, or a partial function of one, changes an argument."""
    return getattr(operation, "func", operation) in _in_place


def whole(reason: str) -> Callable[[Function], Function]:
    """Says of an operation why it takes a picture as a whole only."""

    def mark(function: Function) -> Function:
        _reasons[function] = reason
        return function

    return mark


def around(x: int, y: Optional[int] = None) -> Tiling:
    """The same reach to both sides, along the rows and down the columns."""
    rows = x if y is None else y
    return Tiling((rows, rows, x, x))


def tiling_of(operation: Any, arguments: tuple[Any, ...], keywords: dict[str, Any]) -> Tiling:
    """The tiling of a function, of a partial function, or of a spec and its `apply` method."""
    function = getattr(operation, "func", operation)
    spec = getattr(function, "__self__", function)
    if hasattr(spec, "tiling"):
        tiling: Tiling = spec.tiling()
        return tiling
    name = getattr(function, "__name__", type(function).__name__)
    if function in _reasons:
        raise ValueError(f"{name} takes a picture as a whole: {_reasons[function]}")
    if function not in _tilings:
        raise TypeError(f"{name} is not known to run in parts")
    bound = inspect.signature(operation).bind(None, *arguments, **keywords)
    bound.apply_defaults()
    if isinstance(bound.arguments.get("border"), Region):
        raise TypeError("the parts of a picture are regions themselves; their border is a word")
    named = dict(bound.arguments)
    named.pop(next(iter(inspect.signature(function).parameters)))
    return _tilings[function](**named)


class Part(NamedTuple):
    """A part of a picture: what is kept of it, what is run, and what is read, each (y0, y1, x0, x1)."""

    kept: tuple[int, int, int, int]
    run: tuple[int, int, int, int]
    read: tuple[int, int, int, int]


def _along(start: int, stop: int, length: int, before: int, after: int, grow: int) -> tuple[int, ...]:
    """Along one axis: where the run begins and ends, where reading does."""
    least = max(before, after) + 1
    first, last = max(0, start - grow), min(length, stop + grow)
    while True:
        found = first, last
        # What lies beyond a part is read from memory as far as the operation reaches, or the part ends with the picture.
        if 0 < first < before:
            first = 0
        if 0 < length - last < after:
            last = length
        # At the picture's edge a part is no smaller than the border reaches back into it.
        if first == 0:
            last = max(last, min(length, least))
        if last == length:
            first = min(first, max(0, length - least))
        if found == (first, last):
            return first, last, max(0, first - before), min(length, last + after)


def part_of(kept: tuple[int, int, int, int], shape: tuple[int, ...], tiling: Tiling) -> Part:
    """What is run and read for a part of a picture of that shape."""
    above, below, left, right = tiling.reach
    y = _along(kept[0], kept[1], shape[0], above, below, tiling.grow)
    x = _along(kept[2], kept[3], shape[1], left, right, tiling.grow)
    return Part(kept, (y[0], y[1], x[0], x[1]), (y[2], y[3], x[2], x[3]))


def run_part(part: Part, operation: Callable[..., Any], read: Array, arguments: Any, keywords: Any) -> Any:
    """The result of an operation for what is kept of a part, from what is read for it."""
    y0, y1, x0, x1 = part.run
    region = Region(read, y0 - part.read[0], x0 - part.read[2], y1 - y0, x1 - x0)
    result = operation(region, *arguments, **keywords)
    rows = slice(part.kept[0] - y0, part.kept[1] - y0)
    columns = slice(part.kept[2] - x0, part.kept[3] - x0)
    if isinstance(result, tuple):
        return tuple(each[rows, columns] for each in result)
    return result[rows, columns]
