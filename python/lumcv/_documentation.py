"""Docstrings that share what they say about parameters."""

import inspect
import re
from typing import Any, Callable, TypeVar

Function = TypeVar("Function", bound=Callable[..., Any])

_heading = "Parameters\n----------\n"


def parameters_of(other: Callable[..., Any]) -> Callable[[Function], Function]:
    """Puts the parameters of another function where a docstring says that they are the same."""
    told = inspect.getdoc(other) or ""
    section = told[told.index(_heading) : told.index("\n\nReturns\n")]

    def fill(function: Function) -> Function:
        text = inspect.getdoc(function) or ""
        own = re.sub(r"Parameters are those of `\w+`[^\n]*\n\n" + _heading, lambda _: section + "\n", text)
        function.__doc__ = re.sub(r"Parameters are those of `\w+`[^\n]*", lambda _: section, own)
        return function

    return fill
