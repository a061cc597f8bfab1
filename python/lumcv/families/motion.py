"""The time of each pixel's last motion, and a model of a video's background."""

from typing import Any, NamedTuple, Optional

import numpy

from .._array import FLOAT32, UINT8, Array, Image, of_image, source, target
from .._ffi import ffi
from .._library import lib
from .._members import Members
from .._memory import SIZE, block
from .._status import check

_update = Members("lumiUpdateMotionHistory_{t}_C{n}IR")


class MotionHistory:
    """For each pixel the time of its last motion, forgotten after a while.

    One thread at a time updates a history.

    Parameters
    ----------
    height, width : int
        Size of the pictures.
    duration : float
        How long a motion is remembered, in any unit of time, 0 or more.

    Attributes
    ----------
    image : array of float32
        The history: the time of the last motion, 0 where there was none or where it is forgotten.

    Examples
    --------
    >>> import lumcv, numpy
    >>> history = lumcv.MotionHistory(1, 3, duration=1.5)
    >>> for time, place in enumerate((0, 1, 2), 1):
    ...     moved = numpy.zeros((1, 3), numpy.uint8)
    ...     moved[0, place] = 1
    ...     image = history.update(moved, time)
    >>> image
    array([[0., 2., 3.]], dtype=float32)
    """

    def __init__(self, height: int, width: int, duration: float) -> None:
        self.duration = duration
        self.image: Array = numpy.zeros((height, width), FLOAT32)

    def update(self, silhouette: Image, time: float) -> Array:
        """Enters where there is motion now.

        Parameters
        ----------
        silhouette : array of uint8, uint16 or float32
            Other than 0 where there is motion.
        time : float
            The time of this silhouette.

        Returns
        -------
        array of float32
            The history, `image`.
        """
        array = of_image(silhouette, "silhouette")
        pointer, step, height, width, channels = source(array, "silhouette")
        call, _, name = _update[array.dtype, channels]
        _, result, result_step = target(self.image, array.shape, FLOAT32, "the history")
        status = call(pointer, step, result, result_step, SIZE[width, height], time, self.duration)
        if status:
            check(status, name)
        return self.image


class BackgroundParameters(NamedTuple):
    """Parameters of a background model.

    Attributes
    ----------
    history : int
        Frames of the learning window.
    mixtures : int
        Colour modes of a pixel.
    initial_variance, least_variance, most_variance : float
        Variance of a new mode, and the limits of a mode's variance.
    match_background : float
        Squared distance, in variances, below which a mode explains a pixel.
    background_ratio : float
        Total weight of the modes that make up the background.
    match_generate : float
        Squared distance, in variances, below which a pixel matches a mode.
    complexity_prior : float
        Decay of weights per unit of the learning rate.
    shadow_value : int
        What the result holds at a shadow.
    shadows : bool
        Whether shadows are looked for.
    shadow_ratio : float
        The least brightness of a shadow, relative to the background's.
    """

    history: int = 500
    mixtures: int = 5
    initial_variance: float = 15
    least_variance: float = 4
    most_variance: float = 75
    match_background: float = 16
    background_ratio: float = 0.9
    match_generate: float = 9
    complexity_prior: float = 0.05
    shadow_value: int = 127
    shadows: bool = True
    shadow_ratio: float = 0.5


class BackgroundModel:
    """A mixture of colour modes at each pixel of a video, which tells what moves from what stays.

    One thread at a time uses a model.

    Parameters
    ----------
    height, width : int
        Size of the frames.
    **parameters
        The fields of `BackgroundParameters`.

    Examples
    --------
    >>> import lumcv, numpy
    >>> model = lumcv.BackgroundModel(2, 2)
    >>> still = numpy.full((2, 2, 3), 100, numpy.uint8)
    >>> for _ in range(20):
    ...     mask = model.apply(still)
    >>> still[0, 1] = (250, 10, 10)
    >>> model.apply(still)
    array([[  0, 255],
           [  0,   0]], dtype=uint8)
    >>> model.background()[0, 1]
    array([100, 100, 100], dtype=uint8)
    """

    def __init__(self, height: int, width: int, **parameters: Any) -> None:
        self.parameters = BackgroundParameters(**parameters)
        self.height, self.width = height, width
        self._size = SIZE[width, height]
        bytes_ = ffi.new("Lum32s*")
        check(
            lib.lumiFGMMGetBufferSize_8u_C3R(self._size, self.parameters.mixtures, bytes_), "lumiFGMMGetBufferSize_8u_C3R"
        )
        self._block = block(bytes_[0])
        self._state = ffi.cast("LumFGMMState*", self._block)
        record = ffi.new("LumFGMMParams*", tuple(self.parameters))
        check(
            lib.lumiFGMMInit_8u_C3R(self._size, self.parameters.mixtures, record, self._state), "lumiFGMMInit_8u_C3R"
        )

    def apply(self, frame: Image, learning_rate: float = -1.0, out: Optional[Array] = None) -> Array:
        """Classifies the pixels of a frame, and learns from it.

        Parameters
        ----------
        frame : array of uint8 of 3 channels
            The frame.
        learning_rate : float
            Share of this frame in the model, 0 to 1; chosen by the model where it is negative.
        out : array, optional
            Takes the result.

        Returns
        -------
        array of uint8
            0 is background, `shadow_value` shadow, 255 foreground.
        """
        array = of_image(frame, "frame")
        pointer, step, height, width, channels = source(array, "frame")
        if array.dtype != UINT8 or channels != 3:
            raise TypeError(f"the frames of a model are uint8 with 3 channels, not {array.dtype} with {channels}")
        if (height, width) != (self.height, self.width):
            raise ValueError(f"the frames of the model have {self.height} x {self.width} pixels, not {height} x {width}")
        out, result, result_step = target(out, (height, width), UINT8)
        name = "lumiFGMMForeground_8u_C3R"
        status = lib.lumiFGMMForeground_8u_C3R(
            pointer, step, result, result_step, self._size, self._state, ffi.NULL, learning_rate
        )
        if status:
            check(status, name)
        return out

    def background(self, out: Optional[Array] = None) -> Array:
        """What the model takes for the background.

        Parameters
        ----------
        out : array, optional
            Takes the result.

        Returns
        -------
        array of uint8 of 3 channels
        """
        out, result, result_step = target(out, (self.height, self.width, 3), UINT8)
        check(
            lib.lumiFGMMBackground_8u_C3R(result, result_step, self._size, self._state), "lumiFGMMBackground_8u_C3R"
        )
        return out
