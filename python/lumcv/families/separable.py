"""Filters of a row kernel and a column kernel."""

from typing import Any, Optional, Sequence, Union

import numpy

from .._array import CODES, FLOAT32, FLOAT64, INT16, UINT8, Array, Image, of_image, source_of, target
from .._border import Border, BorderValue, Reach, border_element, border_word
from .._ffi import ffi
from .._library import lib
from .._members import Members
from .._memory import SIZE, Memo, block, query
from .._status import check
from .._tiling import Tiling, tiled

_same = Members("lumiFilterSeparable_{s}_C{n}R")
_bytes_to_shorts = Members("lumiFilterSeparable_{s}16s_C{n}R")

Kernel = Union[Sequence[float], Array]


def reach_of(columns: int, rows: int) -> Reach:
    """What kernels of these taps read beyond a pixel: an even one reads one more to the right and below."""
    return ((rows - 1) // 2, rows // 2, (columns - 1) // 2, columns // 2)


class Separable:
    """A separable filter: its two kernels, for any number of images and any number of threads.

    Parameters
    ----------
    kernel_x, kernel_y : sequences of numbers
        Kernels along the rows and down the columns, not reversed. Whole numbers for uint8 and int16 images.
    dtype : uint8, int16, uint16 or float32
        Element type of the images.
    channels : {1, 3, 4}
        Channels of the images.
    divisor : int
        Divides the sums of each of the two stages; for uint8 and int16 images only.
    result : dtype, optional
        Element type of the results: that of the images, or int16 for uint8 images.

    Examples
    --------
    >>> import lumcv, numpy
    >>> smooth = lumcv.Separable([1, 2, 1], [1, 2, 1], "uint8", divisor=4)
    >>> smooth.apply(numpy.array([[0, 0, 0], [0, 160, 0], [0, 0, 0]], numpy.uint8))
    array([[10, 20, 10],
           [20, 40, 20],
           [10, 20, 10]], dtype=uint8)
    """

    def __init__(
        self,
        kernel_x: Kernel,
        kernel_y: Kernel,
        dtype: Any = "uint8",
        channels: int = 1,
        divisor: int = 1,
        result: Any = None,
    ) -> None:
        self.dtype = numpy.dtype(dtype)
        self.result = self.dtype if result is None else numpy.dtype(result)
        self.channels = channels
        self.divisor = divisor
        if self.result == self.dtype:
            table = _same
        elif self.dtype == UINT8 and self.result == INT16:
            table = _bytes_to_shorts
        else:
            raise TypeError(
                f"no results of {self.result} from {self.dtype}; these would do: {self.dtype}, int16 from uint8"
            )
        self._call, _, self._name = table[self.dtype, channels]
        whole = self.dtype in (UINT8, INT16)
        kind = INT16 if whole else FLOAT32
        kernels = [numpy.asarray(each) for each in (kernel_x, kernel_y)]
        for each, name in zip(kernels, ("kernel_x", "kernel_y")):
            if each.ndim != 1 or each.size == 0:
                raise ValueError(f"{name} has one dimension and one element or more")
            if whole and (each != each.astype(INT16)).any():
                raise TypeError(f"{name} is made of whole numbers of 16 bits where the image has {self.dtype}")
        if not whole and divisor != 1:
            raise ValueError("a divisor goes with uint8 and int16; other kernels are divided beforehand")
        self.kernels = tuple(numpy.ascontiguousarray(each, kind) for each in kernels)
        columns, rows = (each.size for each in self.kernels)
        taps = SIZE[columns, rows]
        self._block = block(query("lumiFilterSeparableGetSpecSize", taps, CODES[kind], channels))
        self._spec = ffi.cast("LumFilterSeparableSpec*", self._block)
        pointers = [ffi.from_buffer("Lum16s[]" if whole else "Lum32f[]", each) for each in self.kernels]
        if whole:
            status = lib.lumiFilterSeparableInit_16s(
                *pointers, taps, divisor, 0, CODES[self.dtype], channels, self._spec
            )
            check(status, "lumiFilterSeparableInit_16s")
        else:
            status = lib.lumiFilterSeparableInit_32f(*pointers, taps, CODES[self.dtype], channels, self._spec)
            check(status, "lumiFilterSeparableInit_32f")
        self._reach = reach_of(columns, rows)
        self._plans: Memo[Any] = Memo(
            lambda width, height: (
                SIZE[width, height],
                query(
                    "lumiFilterSeparableGetBufferSize",
                    SIZE[width, height],
                    taps,
                    CODES[self.dtype],
                    CODES[kind],
                    channels,
                ),
            )
        )

    def tiling(self, **keywords: Any) -> Tiling:
        return Tiling(self._reach)

    def __call__(self, image: Image, **keywords: Any) -> Array:
        return self.apply(image, **keywords)

    def __reduce__(self) -> tuple[type, tuple[Any, ...]]:
        return Separable, (*self.kernels, self.dtype, self.channels, self.divisor, self.result)

    def apply(
        self, image: Image, border: Border = "replicate", border_value: BorderValue = 0, out: Optional[Array] = None
    ) -> Array:
        """The filtered image.

        Parameters
        ----------
        image : array of the filter's type and channels
            The image.
        border : {"replicate", "mirror", "constant"} or Region
            What lies outside the image.
        border_value : float or sequence
            The value of a constant border, one for all channels or one for each.
        out : array, optional
            Takes the result.

        Returns
        -------
        array of the image's shape
            Integers are truncated towards zero and saturated.
        """
        array, pointer, step, height, width = source_of(image, self.dtype, self.channels)
        out, result, result_step = target(out, array.shape, self.result)
        word = border_word(border, image, array, self._reach)
        value = border_element(border, border_value, self.channels, self.dtype)
        size, scratch = self._plans[width, height]
        status = self._call(pointer, step, result, result_step, size, word, value, self._spec, block(scratch))
        if status:
            check(status, self._name)
        return out


def _make(kind: str, data_x: bytes, data_y: bytes, *rest: Any) -> Separable:
    return Separable(numpy.frombuffer(data_x, kind), numpy.frombuffer(data_y, kind), *rest)


_filters: Memo[Separable] = Memo(_make, 64)


def _tiling(kernel_x: Kernel, kernel_y: Kernel, **keywords: Any) -> Tiling:
    return Tiling(reach_of(len(kernel_x), len(kernel_y)))


@tiled(_tiling)
def separable(
    image: Image,
    kernel_x: Kernel,
    kernel_y: Kernel,
    divisor: int = 1,
    dtype: Any = None,
    border: Border = "replicate",
    border_value: BorderValue = 0,
    out: Optional[Array] = None,
) -> Array:
    """Filters an image with a kernel along its rows and another down its columns.

    Parameters
    ----------
    image : array of uint8, int16, uint16 or float32, of 1, 3 or 4 channels
        The image.
    kernel_x, kernel_y : sequences of numbers
        Kernels along the rows and down the columns, not reversed. Whole numbers for uint8 and int16 images.
    divisor : int
        Divides the sums of each of the two stages; for uint8 and int16 images only.
    dtype : dtype, optional
        Element type of the result: that of the image, or int16 for a uint8 image.
    border : {"replicate", "mirror", "constant"} or Region
        What lies outside the image.
    border_value : float or sequence
        The value of a constant border, one for all channels or one for each.
    out : array, optional
        Takes the result.

    Returns
    -------
    array of the image's shape
        Integers are truncated towards zero and saturated.

    See Also
    --------
    Separable : the same filter as an object that can be kept.

    Examples
    --------
    >>> import lumcv, numpy
    >>> ramp = numpy.array([[0, 10, 20, 30]], numpy.uint8)
    >>> lumcv.separable(ramp, [-1, 0, 1], [1], dtype="int16")
    array([[10, 20, 20, 10]], dtype=int16)
    """
    array = of_image(image)
    shape = array.shape
    channels = shape[2] if len(shape) == 3 else 1
    x, y = numpy.asarray(kernel_x, FLOAT64), numpy.asarray(kernel_y, FLOAT64)
    if x.ndim != 1 or y.ndim != 1:
        raise ValueError("kernel_x and kernel_y have one dimension")
    spec = _filters["f8", x.tobytes(), y.tobytes(), array.dtype, channels, divisor, dtype]
    return spec.apply(image, border, border_value, out)
