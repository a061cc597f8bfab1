"""The choice of a function's member by element type and channels, from the names of the library's own functions."""

import re
from typing import Any, NamedTuple

from ._array import DTYPES, TOKENS
from ._library import lib

_token = "8u|16u|16s|32s|32f|64f"
_names = [name for name in dir(lib) if name.startswith("lumi")]


class Member(NamedTuple):
    """One function, the element type of its result, and its name."""

    call: Any
    result: Any
    name: str


class Members(dict[tuple[Any, int], Member]):
    """The members of an operation by (dtype, channels) of the image.

    In the pattern of their names ``{s}`` is the type of the source, ``{t}`` that type, perhaps followed by the type of
    the result, and ``{n}`` the number of channels.
    """

    def __init__(self, pattern: str) -> None:
        super().__init__()
        self.pattern = pattern
        expression = re.escape(pattern).replace(r"\{", "{").replace(r"\}", "}")
        expression = expression.replace("{s}", f"(?P<source>{_token})")
        expression = expression.replace("{t}", f"(?P<source>{_token})(?P<result>{_token})?")
        self._expression = re.compile(expression.replace("{n}", r"(?P<channels>\d)"))
        self._all: dict[tuple[Any, int], str] = {}

    def names(self) -> dict[tuple[Any, int], str]:
        """The name of each member."""
        if not self._all:
            for name in _names:
                found = self._expression.fullmatch(name)
                if found:
                    groups = found.groupdict()
                    self._all[DTYPES[groups["source"]], int(groups.get("channels") or 1)] = name
        return self._all

    def __missing__(self, key: tuple[Any, int]) -> Member:
        names = self.names()
        if key not in names:
            raise TypeError(self.refusal(key))
        found = self._expression.fullmatch(names[key])
        result = found.groupdict().get("result") if found else None
        member = Member(getattr(lib, names[key]), DTYPES[result] if result else key[0], names[key])
        self[key] = member
        return member

    def refusal(self, key: tuple[Any, int]) -> str:
        """That no member serves a key, and what would do."""
        channels: dict[str, list[str]] = {}
        for dtype, count in self.names():
            channels.setdefault(dtype.name, []).append(str(count))
        offers = []
        for name in (dtype.name for dtype in TOKENS):
            if name in channels:
                counts = sorted(channels[name])
                many = "channel" if counts == ["1"] else "channels"
                offers.append(f"{name} with {' or '.join(counts)} {many}")
        return (
            f"no member of {re.split(r'[_{]', self.pattern)[0]} takes {key[0]} with {key[1]} "
            f"{'channel' if key[1] == 1 else 'channels'}; these would do: {', '.join(offers)}"
        )
