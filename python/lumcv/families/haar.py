"""Cascades of boosted stages of rectangle features."""

import json
import threading
from pathlib import Path
from typing import Any, NamedTuple, Optional, Sequence, Union

import numpy

from .._array import FLOAT32, FLOAT64, INT32, UINT8, Array, Image, alike, of_image, source
from .._ffi import ffi
from .._library import lib
from .._memory import SIZE, block, query
from .._status import check
from .integral import integral, rect_stddev


class Classifier(NamedTuple):
    """A weak classifier of a stage.

    Attributes
    ----------
    rectangles : sequence of (x, y, width, height, weight)
        Rectangles in the window, with the weights of their sums.
    threshold : float
        Times the deviation of the window, what the sum is compared with.
    below, above : float
        What is added to the stage's total where the sum is below that, and elsewhere.
    """

    rectangles: Sequence[Sequence[float]]
    threshold: float
    below: float
    above: float


class HaarStage:
    """One stage of a cascade. Threads take turns.

    Parameters
    ----------
    classifiers : sequence of Classifier
        The weak classifiers.
    threshold : float
        The total from which on a window passes.
    tilted : bool
        Whether the rectangles are turned by 45 degrees, for sums that `tilted_integral` makes.

    Examples
    --------
    >>> import lumcv, numpy
    >>> bright = lumcv.HaarStage([lumcv.Classifier([(0, 0, 2, 2, 1)], 100, 0, 1)], threshold=1)
    >>> picture = numpy.array([[10, 10, 90], [10, 10, 90]], numpy.uint8)
    >>> sums = lumcv.integral(picture)
    >>> mask = numpy.ones((1, 2), numpy.uint8)
    >>> bright.apply(sums, numpy.ones((1, 2), numpy.float32), mask), mask
    (1, array([[0, 1]], dtype=uint8))
    """

    def __init__(self, classifiers: Sequence[Classifier], threshold: float, tilted: bool = False) -> None:
        self.classifiers = [Classifier(*each) for each in classifiers]
        self.threshold = threshold
        self.tilted = tilted
        rectangles = [each for classifier in self.classifiers for each in classifier.rectangles]
        counts = ffi.new("Lum32s[]", [len(each.rectangles) for each in self.classifiers])
        length = len(self.classifiers)
        self._block = block(query("lumiHaarClassifierGetSize", 13, SIZE[1, 1], counts, length))
        self._stage = ffi.cast("LumHaarClassifier*", self._block)
        initialise = "lumiTiltedHaarClassifierInit_32f" if tilted else "lumiHaarClassifierInit_32f"
        status = getattr(lib, initialise)(
            self._stage,
            ffi.new("LumRect[]", [tuple(int(side) for side in each[:4]) for each in rectangles]),
            ffi.new("Lum32f[]", [each[4] for each in rectangles]),
            ffi.new("Lum32f[]", [each.threshold for each in self.classifiers]),
            ffi.new("Lum32f[]", [each.below for each in self.classifiers]),
            ffi.new("Lum32f[]", [each.above for each in self.classifiers]),
            counts,
            length,
        )
        check(status, initialise)
        self._lock = threading.Lock()

    @property
    def window(self) -> tuple[int, int]:
        """Height and width that the rectangles reach from a pixel."""
        size = ffi.new("LumSize*")
        check(lib.lumiGetHaarClassifierSize_32f(self._stage, size), "lumiGetHaarClassifierSize_32f")
        return size.height, size.width

    def __reduce__(self) -> tuple[type, tuple[Any, ...]]:
        return HaarStage, (self.classifiers, self.threshold, self.tilted)

    def apply(self, sums: Image, deviations: Image, mask: Array) -> int:
        """Clears the windows of a mask that do not pass the stage.

        Parameters
        ----------
        sums : array of int32 or float32
            An integral image.
        deviations : array of float32
            The deviation of each window.
        mask : array of uint8, of the shape of `deviations`
            Other than 0 for the windows that are looked at; changed in place.

        Returns
        -------
        int
            The number of windows that are left.
        """
        array = of_image(sums, "sums")
        pointer, step, height, width, channels = source(array, "sums")
        names = {INT32: "lumiApplyHaarClassifier_32s32f_C1R", FLOAT32: "lumiApplyHaarClassifier_32f_C1R"}
        if array.dtype not in names or channels != 1:
            raise TypeError(f"the sums have int32 or float32 with 1 channel, not {array.dtype} with {channels}")
        name = names[array.dtype]
        spread = of_image(deviations, "deviations")
        if spread.dtype != FLOAT32 or spread.ndim != 2:
            raise TypeError("deviations is float32 of two dimensions")
        rows, columns = spread.shape
        reach = self.window
        if rows + reach[0] > height or columns + reach[1] > width:
            raise ValueError(
                f"windows of {reach[0]} x {reach[1]} at {rows} x {columns} places reach beyond the sums, {height} x {width}"
            )
        if mask.dtype != UINT8:
            raise TypeError(f"mask has elements of {mask.dtype}, not uint8")
        if mask.shape != spread.shape:
            raise ValueError(f"mask has the shape {mask.shape}; deviations has {spread.shape}")
        norm, norm_step = alike(deviations, spread, "deviations")
        marks, marks_step, _, _, _ = source(mask, "mask", True)
        positive = ffi.new("Lum32s*", int(numpy.count_nonzero(mask)))
        with self._lock:
            status = getattr(lib, name)(
                pointer,
                step,
                norm,
                norm_step,
                marks,
                marks_step,
                SIZE[columns, rows],
                positive,
                self.threshold,
                self._stage,
            )
        if status:
            check(status, name)
        left: int = positive[0]
        return left


class HaarCascade:
    """A cascade of stages, each of which sees the windows that the ones before have let pass.

    Parameters
    ----------
    stages : sequence of HaarStage
        The stages.
    window : pair of int
        Height and width of the window.
    least_deviation : float
        Windows whose tones deviate less from their mean are not looked at.

    Examples
    --------
    >>> import lumcv, numpy
    >>> centre = lumcv.Classifier([(0, 0, 6, 6, -1 / 36), (2, 2, 2, 2, 9 / 36)], 2.0, 0, 1)
    >>> cascade = lumcv.HaarCascade([lumcv.HaarStage([centre], 0.5)], window=(6, 6), least_deviation=5)
    >>> picture = numpy.zeros((12, 12), numpy.uint8)
    >>> picture[5:7, 4:6] = 200
    >>> cascade.windows(picture).tolist()
    [[2, 3]]
    """

    def __init__(self, stages: Sequence[HaarStage], window: tuple[int, int], least_deviation: float = 0.0) -> None:
        self.stages = list(stages)
        self.window = (int(window[0]), int(window[1]))
        self.least_deviation = least_deviation
        for index, stage in enumerate(self.stages):
            if stage.tilted:
                raise ValueError(f"stage {index} is tilted; a cascade looks at upright rectangles")
            height, width = stage.window
            if height > self.window[0] or width > self.window[1]:
                raise ValueError(f"the rectangles of stage {index} reach {height} x {width} pixels, beyond the window")

    @classmethod
    def load(cls, path: Union[str, Path]) -> "HaarCascade":
        """The cascade of a file in the format "lumcv-cascade-1".

        Parameters
        ----------
        path : str or Path
            The file.

        Returns
        -------
        HaarCascade
        """
        with open(path) as file:
            record = json.load(file)
        if not isinstance(record, dict) or record.get("format") != "lumcv-cascade-1":
            raise ValueError(f"{path} is not a file of the format lumcv-cascade-1")
        width, height = record["window"]
        # Files give thresholds for sums that are divided by the pixels of the window.
        stages = [
            HaarStage(
                [
                    Classifier(each["rectangles"], each["threshold"] * width * height, each["below"], each["above"])
                    for each in stage["classifiers"]
                ],
                stage["threshold"],
            )
            for stage in record["stages"]
        ]
        return cls(stages, (height, width), record["leastDeviation"])

    def windows(self, image: Image, mask: Optional[Array] = None) -> Array:
        """The places of the windows that pass all stages.

        Parameters
        ----------
        image : array of uint8
            The image; `pyramid` makes the sizes in which larger objects are found.
        mask : array of uint8 or bool, optional
            Other than 0 for the places that are looked at.

        Returns
        -------
        array of int32, a row (x, y) a window
        """
        array = of_image(image)
        height, width = self.window
        if array.shape[0] < height or array.shape[1] < width:
            return numpy.empty((0, 2), INT32)
        sums, squares = integral(image, squares=FLOAT64)
        deviations = rect_stddev(sums, squares, (0, 0, width, height))
        passed = (deviations >= self.least_deviation).astype(UINT8)
        if mask is not None:
            passed &= numpy.asarray(mask) != 0
        left = int(numpy.count_nonzero(passed))
        for stage in self.stages:
            if left == 0:
                break
            left = stage.apply(sums, deviations, passed)
        rows, columns = numpy.nonzero(passed)
        places: Array = numpy.stack([columns, rows], axis=1).astype(INT32)
        return places
