"""What an operation reads beyond a pixel, by which it may be run on the parts of a picture."""

from typing import Any, Callable, NamedTuple, Optional, TypeVar

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
    """The tiling of a function, of a partial function, or of a spec with an `apply` method."""
    function = getattr(operation, "func", operation)
    if hasattr(operation, "func"):
        arguments = (*operation.args, *arguments)
        keywords = {**operation.keywords, **keywords}
    if hasattr(function, "tiling"):
        tiling: Tiling = function.tiling(*arguments, **keywords)
        return tiling
    owner = getattr(function, "__self__", None)
    if owner is not None and hasattr(owner, "tiling"):
        tiling = owner.tiling(*arguments, **keywords)
        return tiling
    name = getattr(function, "__name__", type(function).__name__)
    if function in _reasons:
        raise ValueError(f"{name} takes a picture as a whole: {_reasons[function]}")
    if function not in _tilings:
        raise TypeError(f"{name} is not known to run in parts: its result is not an image of the picture's size")
    return _tilings[function](*arguments, **keywords)
