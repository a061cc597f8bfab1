"""Statuses as exceptions and warnings."""

import re
import warnings


class Error(RuntimeError):
    """A call that the library has refused.

    Attributes
    ----------
    status : int
        The number of the status, below 0.
    name : str
        Its name, as in the header.
    sentence : str
        What is wrong, in the words of the function's documentation.
    argument : str
        The arguments that may be wrong, separated by commas; empty where none can be named.
    function : str
        The function of the library that was called.

    Examples
    --------
    >>> import lumcv, numpy
    >>> try:
    ...     lumcv.canny(numpy.zeros((8, 8), numpy.uint8), low=50, high=20)
    ... except lumcv.Error as error:
    ...     print(error.name, "/", error.argument)
    lumStatusBadArgument / low, high
    """

    def __init__(self, status: int, function: str) -> None:
        self.status = status
        self.function = function
        self.name, self.sentence, self.argument = describe(status, function)
        about = f" ({self.argument})" if self.argument else ""
        super().__init__(f"{function}: {self.name}{about}: {self.sentence}")

    def __reduce__(self) -> tuple[type, tuple[int, str]]:
        return Error, (self.status, self.function)


#: Arguments as the array layer calls them.
_arguments = {
    "src": "image",
    "dst": "out",
    "srcDst": "out",
    "src1": "image",
    "src2": "other",
    "roiSize": "image",
    "lowThreshold": "low",
    "highThreshold": "high",
    "kernelSize": "taps",
    "coi": "channel",
    "avgWindow": "window",
    "blockSize": "window",
    "winSize": "window",
    "apertureSize": "size",
    "maskSize": "size",
    "filterMask": "size",
    "maxLevel": "levels",
    "level": "levels",
    "maxIterations": "iterations",
    "maxPeakCount": "count",
    "maxLineCount": "count",
    "lineLength": "length",
    "lineGap": "gap",
    "circleRadius": "radius",
    "arcLength": "arc",
    "orientationBins": "bins",
    "minLabel": "first",
    "maxLabel": "last",
    "minDelta": "delta",
    "maxDelta": "delta",
    "metrics": "steps",
    "maxMixtures": "mixtures",
    "learningRate": "learning_rate",
    "point1": "start",
    "point2": "end",
    "fx": "focal",
    "fy": "focal",
}
#: What a status is about where its sentence names nothing.
_usual = {
    "lumStatusSizeError": "image",
    "lumStatusStepError": "image",
    "lumStatusStepAlignmentError": "image",
    "lumStatusEmptyRange": "limits",
    "lumStatusMetricError": "steps",
    "lumStatusModeError": "method",
}
_results = {"lineCount", "peakCount", "cornerCount"}
_tested = {"filterKind", "kernelKind", "filter", "norm", "flags", "method", "type", "dataType", "channels", "numChannels"}


class StatusWarning(UserWarning):
    """A call that has valid results and something to say about them."""


def describe(status: int, function: str) -> tuple[str, str, str]:
    """Name, sentence and arguments of a status of a function."""
    from ._messages import PARAMETERS, REFUSALS, REFUSALS_OF, STATUSES

    name, sentence = STATUSES.get(status, (f"status {status}", "unknown to the headers"))
    sentence = REFUSALS[REFUSALS_OF[function]].get(name, sentence) if function in REFUSALS_OF else sentence
    parameters = PARAMETERS.get(function, [])
    # What a part of the sentence says, it says of the argument that it names first.
    clauses = re.split(r"; |,? or |, ", sentence)
    if any(" null" in clause for clause in clauses):
        clauses = re.findall(r"\w+", sentence)
    found = [[word for word in re.findall(r"\w+", clause) if word in parameters] for clause in clauses]
    named = [words[0] for words in found if words and words[0] not in _results]
    # Words for kinds are tested before a call is made; another argument that the sentence names is the one.
    suspects = [word for word in named if word not in _tested] or named
    arguments = dict.fromkeys(_arguments.get(word, word) for word in suspects)
    return name, sentence, ", ".join(arguments) or _usual.get(name, "")


def check(status: int, function: str, level: int = 3) -> None:
    """Raises for a negative status, warns for a positive one."""
    if status < 0:
        raise Error(status, function)
    if status > 0:
        name, sentence, _ = describe(status, function)
        warnings.warn(f"{name}: {sentence}", StatusWarning, stacklevel=level)
