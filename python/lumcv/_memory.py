"""Blocks that the library works in, and what is remembered from one call to the next."""

from typing import Any, Callable, Generic, TypeVar

from ._ffi import ffi
from ._library import lib
from ._status import check

Value = TypeVar("Value")

_allocate = ffi.new_allocator(should_clear_after_alloc=False)
_bytes = ffi.typeof("Lum8u[]")
_count = ffi.typeof("Lum32s*")


class Memo(dict[tuple[Any, ...], Value], Generic[Value]):
    """Values by the arguments that they are made of; forgotten all at once where they become too many."""

    def __init__(self, make: Callable[..., Value], limit: int = 256) -> None:
        super().__init__()
        self.make = make
        self.limit = limit

    def __missing__(self, key: tuple[Any, ...]) -> Value:
        value = self.make(*key)
        if len(self) >= self.limit:
            self.clear()
        self[key] = value
        return value


def block(size: int) -> Any:
    """A block of that many bytes, whose contents are arbitrary."""
    return _allocate(_bytes, size if size > 0 else 1)


def queries(function: str, *arguments: Any, count: int) -> list[int]:
    """The sizes that a size query writes into its last arguments."""
    cells = [ffi.new(_count) for _ in range(count)]
    check(getattr(lib, function)(*arguments, *cells), function)
    return [cell[0] for cell in cells]


def query(function: str, *arguments: Any) -> int:
    """The size that a size query writes into its last argument."""
    return queries(function, *arguments, count=1)[0]


#: A LumSize by width and height.
SIZE: Memo[Any] = Memo(lambda width, height: ffi.new("LumSize*", (width, height))[0], 4096)
#: A LumSizeL by width and height.
SIZE_L: Memo[Any] = Memo(lambda width, height: ffi.new("LumSizeL*", (width, height))[0], 4096)
