"""Gaussian filters."""

from typing import Any, Optional

import numpy

from .._array import CODES, Array, Image, of_image, source_of, target
from .._border import Border, BorderValue, Reach, border_elements, border_word
from .._ffi import ffi
from .._library import lib
from .._members import Members
from .._memory import SIZE_L, Memo, block, queries, query
from .._status import check
from .._tiling import Tiling, around, tiled

_members = Members("lumiFilterGaussian_{s}_C{n}R_L")
_replicate = 1


def taps_of(sigma: float) -> int:
    """The taps of a Gaussian that ends three standard deviations from its centre."""
    return max(3, 2 * int(numpy.ceil(3 * sigma)) + 1) if sigma > 0 else 3


class Gaussian:
    """A Gaussian filter: its weights, for any number of images and any number of threads.

    Parameters
    ----------
    sigma : float
        Standard deviation in pixels, above 0.
    dtype : uint8, uint16, int16 or float32
        Element type of the images.
    channels : {1, 3}
        Channels of the images.
    taps : int, optional
        Taps in each direction, odd and 3 or more; by default 2 * ceil(3 sigma) + 1.

    Examples
    --------
    >>> import lumcv, numpy
    >>> blur = lumcv.Gaussian(1.5, "uint8")
    >>> blur.taps
    11
    >>> flat = numpy.full((16, 16), 77, numpy.uint8)
    >>> bool((blur.apply(flat) == flat).all())
    True
    """

    def __init__(self, sigma: float, dtype: Any = "uint8", channels: int = 1, taps: Optional[int] = None) -> None:
        self.sigma = float(sigma)
        self.dtype = numpy.dtype(dtype)
        self.channels = channels
        self.taps = taps_of(sigma) if taps is None else taps
        code = CODES.get(self.dtype, -1)
        self._call, _, self._name = _members[self.dtype, channels]
        spec, scratch = queries("lumiFilterGaussianGetSpecSize_L", self.taps, code, channels, count=2)
        self._block = block(spec)
        self._spec = ffi.cast("LumFilterGaussianSpecL*", self._block)
        initialise = lib.lumiFilterGaussianInit_L
        status = initialise(SIZE_L[1, 1], self.taps, self.sigma, _replicate, code, channels, self._spec, block(scratch))
        check(status, "lumiFilterGaussianInit_L")
        reach = self.taps // 2
        self._reach: Reach = (reach, reach, reach, reach)
        self._plans: Memo[Any] = Memo(
            lambda width, height: (
                SIZE_L[width, height],
                query(
                    "lumiFilterGaussianGetBufferSize_L", SIZE_L[width, height], self.taps, code, _replicate, channels
                ),
            )
        )

    def tiling(self, **keywords: Any) -> Tiling:
        return around(self.taps // 2)

    def __call__(self, image: Image, **keywords: Any) -> Array:
        return self.apply(image, **keywords)

    def __reduce__(self) -> tuple[type, tuple[Any, ...]]:
        return Gaussian, (self.sigma, self.dtype, self.channels, self.taps)

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
            Takes the result; may be the image itself unless the border mirrors.

        Returns
        -------
        array like the image
        """
        array, pointer, step, height, width = source_of(image, self.dtype, self.channels)
        out, result, result_step = target(out, array.shape, self.dtype)
        word = border_word(border, image, array, self._reach)
        value = border_elements(border, border_value, self.channels, self.dtype)
        size, scratch = self._plans[width, height]
        status = self._call(pointer, step, result, result_step, size, word, value, self._spec, block(scratch))
        if status:
            check(status, self._name)
        return out


_filters: Memo[Gaussian] = Memo(Gaussian, 64)


def _tiling(sigma: float, taps: Optional[int] = None, **keywords: Any) -> Tiling:
    return around((taps_of(sigma) if taps is None else taps) // 2)


@tiled(_tiling)
def gaussian(
    image: Image,
    sigma: float,
    taps: Optional[int] = None,
    border: Border = "replicate",
    border_value: BorderValue = 0,
    out: Optional[Array] = None,
) -> Array:
    """Smooths an image with a Gaussian.

    Parameters
    ----------
    image : array of uint8, uint16, int16 or float32, of 1 or 3 channels
        The image.
    sigma : float
        Standard deviation in pixels, above 0.
    taps : int, optional
        Taps in each direction, odd and 3 or more; by default 2 * ceil(3 sigma) + 1.
    border : {"replicate", "mirror", "constant"} or Region
        What lies outside the image.
    border_value : float or sequence
        The value of a constant border, one for all channels or one for each.
    out : array, optional
        Takes the result; may be the image itself unless the border mirrors.

    Returns
    -------
    array like the image

    See Also
    --------
    Gaussian : the same filter as an object that can be kept.

    Examples
    --------
    >>> import lumcv, numpy
    >>> point = numpy.zeros((5, 5), numpy.float32)
    >>> point[2, 2] = 16
    >>> lumcv.gaussian(point, sigma=0.85, taps=3).round(1)
    array([[0., 0., 0., 0., 0.],
           [0., 1., 2., 1., 0.],
           [0., 2., 4., 2., 0.],
           [0., 1., 2., 1., 0.],
           [0., 0., 0., 0., 0.]], dtype=float32)
    """
    array = of_image(image)
    shape = array.shape
    channels = shape[2] if len(shape) == 3 else 1
    return _filters[sigma, array.dtype, channels, taps].apply(image, border, border_value, out)
