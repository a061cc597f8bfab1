"""Words for what lies outside an image."""

from typing import Any, Optional, Sequence, Union

import numpy

from ._array import Array, Image, Region, element, elements
from ._ffi import ffi
from ._memory import Memo

Border = Union[str, Region]
BorderValue = Union[float, Sequence[float]]

KINDS = {"replicate": 1, "mirror": 3, "default": 5, "constant": 6}
SIDES = (0x10, 0x20, 0x40, 0x80)
#: Rows above and below, columns at the left and at the right that an operation reads beyond a pixel.
Reach = tuple[int, int, int, int]
_names = ("rows above", "rows below", "columns at the left of", "columns at the right of")
_null = ffi.NULL
#: Some members want an element for each channel whatever the border is.
_zeros: Memo[Any] = Memo(lambda dtype: elements(0, 4, dtype, "border_value"))


def border_word(border: Border, image: Image, array: Array, reach: Reach) -> int:
    """The border word of a call: a kind, with the flags of the sides that exist in memory."""
    region: Optional[Region] = image if isinstance(image, Region) else None
    if isinstance(border, Region):
        if region is not None:
            raise ValueError("the image is a region already, so that border is a word")
        region, border = border, "replicate"
        if (
            array.__array_interface__["data"] != region.view.__array_interface__["data"]
            or array.shape != region.view.shape
            or array.strides != region.view.strides
        ):
            raise ValueError("border is a region at another place than the image")
    kind = KINDS.get(border)
    if kind is None:
        words = ", ".join(f'"{word}"' for word in KINDS)
        raise ValueError(f"border is one of {words} or a lumcv.Region, not {border!r}")
    if region is None:
        return kind
    word = kind
    for margin, needed, side, name in zip(region.margins, reach, SIDES, _names):
        if margin > 0 and needed > 0:
            if margin < needed:
                raise ValueError(f"the operation reads {needed} {name} the region, of which the array has {margin}")
            word |= side
    return word


def border_elements(border: Border, value: BorderValue, channels: int, dtype: Any) -> Any:
    """The value of a constant border as a pointer to an element a channel; null for other borders."""
    if border != "constant":
        return _null
    return elements(value, channels, dtype, "border_value")


def one_element(border: Border, value: BorderValue, dtype: Any) -> Any:
    """The value of a constant border of one channel; 0 for other borders."""
    return element(value, dtype, "border_value") if border == "constant" else 0  # type: ignore[arg-type]


def border_element(border: Border, value: BorderValue, channels: int, dtype: Any) -> Any:
    """The value of a constant border as members take it: by value with one channel, else a pointer."""
    if border != "constant":
        return 0 if channels == 1 else _zeros[dtype,]
    if channels == 1:
        return element(numpy.atleast_1d(value)[0], dtype, "border_value")
    return elements(value, channels, dtype, "border_value")
