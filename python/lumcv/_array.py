"""Arrays as the library sees them: a pointer, a step and a size. Nothing is copied."""

from typing import Any, Optional, Sequence, Union

import numpy

from ._ffi import ffi

Array = numpy.ndarray[Any, numpy.dtype[Any]]

#: Element types: the token in the names of functions, the code of size queries.
TOKENS = {
    numpy.dtype(name): token
    for name, token in (
        ("uint8", "8u"),
        ("int8", "8s"),
        ("uint16", "16u"),
        ("int16", "16s"),
        ("int32", "32s"),
        ("float32", "32f"),
        ("float64", "64f"),
    )
}
DTYPES = {token: dtype for dtype, token in TOKENS.items()}
CODES = {
    DTYPES["8u"]: 1,
    DTYPES["16u"]: 5,
    DTYPES["16s"]: 7,
    DTYPES["32s"]: 11,
    DTYPES["32f"]: 13,
    DTYPES["64f"]: 19,
}
UINT8 = DTYPES["8u"]
UINT16 = DTYPES["16u"]
INT16 = DTYPES["16s"]
INT32 = DTYPES["32s"]
FLOAT32 = DTYPES["32f"]
FLOAT64 = DTYPES["64f"]

#: What a pointer to elements is, and their size.
_arrays = {dtype: (ffi.typeof(f"Lum{token}[]"), dtype.itemsize) for dtype, token in TOKENS.items()}
_bool = numpy.dtype(bool)
_arrays[_bool] = _arrays[UINT8]
_from_buffer = ffi.from_buffer
_ndarray = numpy.ndarray


class Region:
    """A rectangle of a larger array, whose surroundings exist in memory and are read in place of a border.

    A region is an image wherever one is taken. On the sides where it ends with the array, what lies outside is what
    `border` says; on all others it is the array's own pixels.

    Parameters
    ----------
    array : numpy.ndarray
        The larger array; it is not copied.
    y0, x0 : int
        Row and column of the region's first pixel.
    h, w : int
        Height and width of the region.

    Examples
    --------
    >>> import lumcv, numpy
    >>> picture = numpy.arange(64, dtype=numpy.uint8).reshape(8, 8)
    >>> part = lumcv.lowpass(lumcv.Region(picture, 2, 2, 4, 4))
    >>> bool((part == lumcv.lowpass(picture)[2:6, 2:6]).all())
    True
    """

    __slots__ = ("array", "view", "y0", "x0", "margins")

    def __init__(self, array: Array, y0: int, x0: int, h: int, w: int) -> None:
        if not isinstance(array, _ndarray) or array.ndim not in (2, 3):
            raise TypeError("a region is a part of a numpy.ndarray of two or three dimensions")
        height, width = array.shape[:2]
        if not (0 <= y0 and 0 <= x0 and h > 0 and w > 0 and y0 + h <= height and x0 + w <= width):
            raise ValueError(f"the region {y0, x0, h, w} does not lie in an array of {height} x {width}")
        self.array = array
        self.view: Array = array[y0 : y0 + h, x0 : x0 + w]
        self.y0 = y0
        self.x0 = x0
        #: Rows above and below, columns at the left and at the right that exist in memory.
        self.margins = (y0, height - y0 - h, x0, width - x0 - w)

    @property
    def shape(self) -> tuple[int, ...]:
        return self.view.shape

    @property
    def dtype(self) -> Any:
        return self.view.dtype

    @property
    def ndim(self) -> int:
        return self.view.ndim


Image = Union[Array, Region]


def of_image(image: Image, name: str = "image") -> Array:
    """The array of an image, or of a region the part of the array."""
    if isinstance(image, _ndarray):
        return image
    if isinstance(image, Region):
        return image.view
    hint = "; lumcv.dask.map takes dask arrays" if hasattr(image, "dask") else ""
    raise TypeError(f"{name} is a numpy.ndarray or a lumcv.Region, not {type(image).__name__}{hint}")


def source(array: Array, name: str = "image", writable: bool = False) -> tuple[Any, int, int, int, int]:
    """Pointer, step, height, width and channels of an array.

    For elements that no function takes the pointer is None; the choice of a member then tells which ones would do.
    """
    shape = array.shape
    if len(shape) == 2:
        height, width = shape
        channels = 1
    elif len(shape) == 3:
        height, width, channels = shape
    else:
        raise ValueError(f"{name} has {len(shape)} dimensions; an image has height, width and perhaps channels")
    kind = _arrays.get(array.dtype)
    if kind is None:
        return None, 0, height, width, channels
    row = width * channels * kind[1]
    step = array.strides[0]
    try:
        if height < 2:
            # A region of one row: its surroundings are as far away as those of any other.
            return (
                _from_buffer(kind[0], array, writable),
                step if row < step < 2**31 else row,
                height,
                width,
                channels,
            )
        if step == row:
            return _from_buffer(kind[0], array, writable), step, height, width, channels
        if step > 0:
            return _from_buffer(kind[0], array[0], writable), step, height, width, channels
    except (BufferError, ValueError):
        if writable and not array.flags.writeable:
            raise ValueError(f"{name} is read-only") from None
    raise ValueError(
        f"{name}: pixels of a row must adjoin and rows must follow each other upward in memory, which is not so with the "
        f"strides {array.strides}; numpy.ascontiguousarray({name}) makes such an array"
    )


def target(out: Optional[Array], shape: tuple[int, ...], dtype: Any, name: str = "out") -> tuple[Array, Any, int]:
    """The array for a result, given or new, with its pointer and step."""
    if out is None:
        out = numpy.empty(shape, dtype)
        return out, _from_buffer(_arrays[dtype][0], out), out.strides[0]
    if not isinstance(out, _ndarray):
        raise TypeError(f"{name} is a numpy.ndarray, not {type(out).__name__}")
    if out.dtype != dtype:
        raise TypeError(f"{name} has elements of {out.dtype}; the result has {dtype}")
    if out.shape != shape:
        raise ValueError(f"{name} has the shape {out.shape}; the result has {shape}")
    pointer, step, _, _, _ = source(out, name, True)
    return out, pointer, step


def alike(other: Image, array: Array, name: str, dtype: Any = None) -> tuple[Any, int]:
    """Pointer and step of a second image, which must have the shape of the first one and elements of a type."""
    second = of_image(other, name)
    if second.shape != array.shape:
        raise ValueError(f"{name} has the shape {second.shape}; the image has {array.shape}")
    if second.dtype != (array.dtype if dtype is None else dtype):
        raise TypeError(f"{name} has elements of {second.dtype}, not {array.dtype if dtype is None else dtype}")
    pointer, step, _, _, _ = source(second, name)
    return pointer, step


def of_mask(mask: Image, height: int, width: int, name: str = "mask", writable: bool = False) -> tuple[Any, int]:
    """Pointer and step of a mask: a byte or a bool a pixel, 0 excludes the pixel."""
    array = of_image(mask, name)
    if array.dtype not in (UINT8, _bool):
        raise TypeError(f"{name} has elements of {array.dtype}; a mask has uint8 or bool")
    if array.shape not in ((height, width), (height, width, 1)):
        raise ValueError(f"{name} has the shape {array.shape}; the image has {height} x {width} pixels")
    pointer, step, _, _, _ = source(array, name, writable)
    return pointer, step


#: What an integer type holds, and which whole numbers a type of floats certainly holds.
_held = {
    dtype: (numpy.iinfo(dtype).min, numpy.iinfo(dtype).max) if dtype.kind in "iu" else (-(2**24), 2**24)
    for dtype in TOKENS
}


def elements(values: Union[float, Sequence[float], Array], count: int, dtype: Any, name: str) -> Any:
    """As many elements as given, from one number or from a sequence, as the library reads them."""
    if type(values) is int and _held[dtype][0] <= values <= _held[dtype][1]:
        return ffi.new(_arrays[dtype][0], [values] * count)
    array = numpy.atleast_1d(numpy.asarray(values))
    if array.ndim != 1 or array.size not in (1, count):
        raise ValueError(f"{name} is one number or {count} of them")
    if array.dtype.kind not in "biuf":
        raise TypeError(f"{name} is made of numbers, not of {array.dtype}")
    if dtype.kind in "iu":
        limits = numpy.iinfo(dtype)
        if array.dtype.kind == "f" and not (array == numpy.floor(array)).all():
            raise ValueError(f"{name} is made of whole numbers where the elements are {dtype}")
        if (array < limits.min).any() or (array > limits.max).any():
            raise ValueError(f"{name} lies outside of {dtype}")
    filled = numpy.broadcast_to(array.astype(dtype), (count,))
    return ffi.new(_arrays[numpy.dtype(dtype)][0], filled.tolist())


def element(value: float, dtype: Any, name: str) -> Any:
    """One element: a number that its type holds."""
    if type(value) is int and _held[dtype][0] <= value <= _held[dtype][1]:
        return value
    return elements(value, 1, dtype, name)[0]
