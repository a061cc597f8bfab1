"""Repair of the pixels that a mask selects."""

import threading
from typing import Any, Optional

from .._array import FLOAT32, UINT8, Array, Image, of_image, of_mask, source, target
from .._ffi import ffi
from .._library import lib
from .._members import Members
from .._memory import SIZE, block, queries
from .._status import check
from .._tiling import whole
from .distance import fast_marching

_members = Members("lumiInpaint_{s}_C{n}R")
_methods = {"front": 0, "isophote": 1}


class Inpainter:
    """A hole, analysed once, for the repair of any number of pictures. Threads take turns.

    Parameters
    ----------
    mask : array of uint8 or bool
        Other than 0 where pixels are to be repaired.
    radius : float
        Radius in pixels of the disc of known pixels that a repaired one is made of, 1 or more.
    method : {"front", "isophote"}
        What weighs the known pixels: the gradient of the distances from the hole's edge, or the level lines of the picture.
    channels : {1, 3}
        Channels of the pictures.
    distances : array of float32, optional
        The order of repair; that of `fast_marching` unless given.

    Examples
    --------
    >>> import lumcv, numpy
    >>> hole = numpy.zeros((5, 5), bool)
    >>> hole[2, 2] = True
    >>> picture = numpy.full((5, 5), 60, numpy.uint8)
    >>> picture[2, 2] = 255
    >>> int(lumcv.Inpainter(hole, radius=2).apply(picture)[2, 2])
    60
    """

    def __init__(
        self,
        mask: Image,
        radius: float = 5.0,
        method: str = "front",
        channels: int = 1,
        distances: Optional[Array] = None,
    ) -> None:
        if method not in _methods:
            raise ValueError(f'method is "front" or "isophote", not {method!r}')
        array = of_image(mask, "mask")
        height, width = array.shape[:2]
        pointer, step = of_mask(array, height, width)
        self._call, _, self._name = _members[UINT8, channels]
        self.channels = channels
        self.shape = (height, width)
        field = fast_marching(array.reshape(height, width)) if distances is None else distances
        if field.dtype != FLOAT32 or field.shape != self.shape:
            raise ValueError(f"distances is float32 of the shape {self.shape}")
        order, order_step, _, _, _ = source(field, "distances")
        size, code = SIZE[width, height], _methods[method]
        state_bytes, self._scratch = queries("lumiInpaintGetSize", pointer, step, size, radius, code, channels, count=2)
        self._block = block(state_bytes)
        state = ffi.new("LumInpaintState**")
        initialise = f"lumiInpaintInit_8u_C{channels}R"
        scratch = block(self._scratch)
        status = getattr(lib, initialise)(
            state, order, order_step, pointer, step, size, radius, code, self._block, scratch
        )
        check(status, initialise)
        self._state = state[0]
        self._lock = threading.Lock()

    def apply(self, image: Image, out: Optional[Array] = None) -> Array:
        """The picture with its hole repaired.

        Parameters
        ----------
        image : array of uint8
            The picture, of the size of the mask.
        out : array, optional
            Takes the result.

        Returns
        -------
        array like the picture
        """
        array = of_image(image)
        pointer, step, height, width, channels = source(array)
        if array.dtype != UINT8 or channels != self.channels:
            raise TypeError(
                f"the hole is for uint8 with {self.channels} channels, the picture has {array.dtype} with {channels}"
            )
        if (height, width) != self.shape:
            raise ValueError(f"the hole is for pictures of {self.shape}, not of {(height, width)}")
        out, result, result_step = target(out, array.shape, UINT8)
        with self._lock:
            status = self._call(
                pointer, step, result, result_step, SIZE[width, height], self._state, block(self._scratch)
            )
        if status:
            check(status, self._name)
        return out


@whole("a hole is filled from its edge inward, and may be anywhere")
def inpaint(
    image: Image, mask: Image, radius: float = 5.0, method: str = "front", out: Optional[Array] = None
) -> Array:
    """Repairs the pixels that a mask selects, from those around them.

    Parameters
    ----------
    image : array of uint8, of 1 or 3 channels
        The picture.
    mask : array of uint8 or bool
        Other than 0 where pixels are to be repaired.
    radius : float
        Radius in pixels of the disc of known pixels that a repaired one is made of, 1 or more.
    method : {"front", "isophote"}
        What weighs the known pixels: the gradient of the distances from the hole's edge, or the level lines of the picture.
    out : array, optional
        Takes the result.

    Returns
    -------
    array like the picture

    See Also
    --------
    Inpainter : the same for many pictures with one hole.

    Examples
    --------
    >>> import lumcv, numpy
    >>> picture = numpy.full((5, 5), 60, numpy.uint8)
    >>> picture[2, 2] = 255
    >>> bool((lumcv.inpaint(picture, picture == 255) == 60).all())
    True
    """
    array: Any = of_image(image)
    shape = array.shape
    channels = shape[2] if len(shape) == 3 else 1
    return Inpainter(mask, radius, method, channels).apply(image, out)
