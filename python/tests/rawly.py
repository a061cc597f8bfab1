"""Calls of the raw layer on arrays, written out as a host in C would."""

from lumcv import raw

ffi = raw.ffi
TOKENS = {"uint8": "8u", "int8": "8s", "uint16": "16u", "int16": "16s", "int32": "32s", "float32": "32f", "float64": "64f", "bool": "8u"}


def pointer(array):
    """First element of a contiguous array."""
    return ffi.from_buffer(f"Lum{TOKENS[array.dtype.name]}[]", array)


def image(array):
    """Pointer and step of a contiguous array."""
    return pointer(array), array.strides[0]


def size(array):
    return ffi.new("LumSize*", (array.shape[1], array.shape[0]))[0]


def ok(status):
    assert status == 0, status


def asked(name, *arguments, count=1):
    """What a size query tells, as buffers of exactly these bytes."""
    cells = [ffi.new("Lum32s*") for _ in range(count)]
    ok(getattr(raw, name)(*arguments, *cells))
    blocks = [ffi.new("Lum8u[]", max(cell[0], 1)) for cell in cells]
    return blocks[0] if count == 1 else blocks
