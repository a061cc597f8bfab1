"""Every function of the library, as the public headers declare it.

The functions are called through cffi with pointers, steps and sizes, return a status, and test nothing beyond what the
library tests. While one runs, other Python threads run too.

>>> from lumcv import raw
>>> before = raw.ffi.new("Lum8u[]", [10, 20, 30, 40])
>>> after = raw.ffi.new("Lum8u[]", [10, 25, 20, 40])
>>> difference = raw.ffi.new("Lum8u[]", 4)
>>> size = raw.ffi.new("LumSize*", (4, 1))[0]
>>> raw.lumiAbsDiff_8u_C1R(before, 4, after, 4, difference, 4, size) == raw.lumStatusOk
True
>>> list(difference)
[0, 5, 10, 0]
"""

from typing import Any

from ._ffi import ffi
from ._library import lib, path

#: The names of all functions.
names: list[str] = [name for name in dir(lib) if name.startswith(("lumi", "lumcv"))]

__all__ = ["ffi", "lib", "names", "path"]


def __getattr__(name: str) -> Any:
    return getattr(lib, name)


def __dir__() -> list[str]:
    return sorted({*globals(), *dir(lib)})
