"""Statuses as exceptions and warnings: each one that a call on arrays can have."""

import inspect
import pickle

import numpy
import pytest

import lumcv
from lumcv import _status, raw
from lumcv._messages import PARAMETERS, REFUSALS, REFUSALS_OF, STATUSES

U = numpy.zeros((8, 8), "uint8")
F = numpy.zeros((8, 8), "float32")
EMPTY = numpy.zeros((0, 4), "uint8")

CALLS = {
    "lumStatusBadArgument": lambda: lumcv.fast_marching(U, -1),
    "lumStatusSizeError": lambda: lumcv.lowpass(EMPTY),
    "lumStatusEmptyRange": lambda: lumcv.hough_lines(U, 5, limits=((5, 0), (1, 1))),
    "lumStatusOutOfRange": lambda: lumcv.flood_fill(U, (8, 0), 1),
    "lumStatusModeError": lambda: lumcv.watershed(F, U.astype("uint16")),
    "lumStatusThresholdError": lambda: lumcv.fast_corners(U, -1),
    "lumStatusMaskSizeError": lambda: lumcv.canny(U, 1, 2, size=5, filter="scharr"),
    "lumStatusAnchorError": lambda: lumcv.gray_dilate(U, [[1]], anchor=(1, 0)),
    "lumStatusDivisorError": lambda: lumcv.separable(U, [1], [1], divisor=0),
    "lumStatusChannelOfInterestError": lambda: lumcv.mean(numpy.zeros((4, 4, 3), "uint8"), channel=5),
    "lumStatusMetricError": lambda: lumcv.distance(U, 3, steps=[0, 1]),
    "lumStatusBorderError": lambda: lumcv.canny(U, 1, 2, border="default"),
    "lumStatusInPlaceNotSupported": lambda: lumcv.harris(F, out=F),
    "lumStatusStepError": lambda: lumcv.absdiff(overlapping(), 1),
    "lumStatusStepAlignmentError": lambda: lumcv.absdiff(misaligned(), 1),
    "lumStatusBufferTooLarge": lambda: lumcv.hough_lines(U, 5, rho=1e-8),
}


def overlapping():
    """Rows that begin within the one before."""
    return numpy.lib.stride_tricks.as_strided(numpy.zeros(64, "uint8"), (6, 8), (4, 1))


def misaligned():
    """Rows of shorts that lie an odd number of bytes apart."""
    return numpy.lib.stride_tricks.as_strided(numpy.zeros(64, "uint8").view("uint16"), (3, 4), (9, 2))


@pytest.mark.parametrize("name", CALLS)
def test_status_is_an_error_with_name_sentence_and_argument(name):
    with pytest.raises(lumcv.Error) as caught:
        CALLS[name]()
    error = caught.value
    assert error.name == name
    assert STATUSES[error.status][0] == name
    assert error.sentence and error.function in raw.names
    assert str(error).startswith(f"{error.function}: {name}") and error.sentence in str(error)
    if name not in ("lumStatusOutOfRange", "lumStatusBufferTooLarge"):
        assert error.argument
    assert pickle.loads(pickle.dumps(error)).args == error.args


#: Errors that no call on arrays has: the arrays make sure of it, or the library itself has them between its routines only.
PREVENTED = {
    "lumStatusNullPointer",
    "lumStatusBadValue",
    "lumStatusZeroSigma",
    "lumStatusContextMismatch",
    "lumStatusAxisError",
    "lumStatusChannelCountError",
    "lumStatusCountError",
    "lumStatusDataTypeError",
    "lumStatusNormError",
    "lumStatusAlgorithmError",
    "lumStatusSizeOverflow",
}


#: Arguments after the picture, where an operation has some that are needed.
FURTHER = {
    "absdiff": (U,),
    "accumulate": (F,),
    "accumulate_product": (U, F),
    "accumulate_square": (F,),
    "accumulate_weighted": (F, 0.5),
    "add_weighted": (F, 0.5),
    "bound_segments": (3,),
    "canny": (1, 2),
    "canny_derivatives": (U, 1, 2),
    "copy_patch": ((4, 4), (0.5, 0.5)),
    "copy_subpix": ((4, 4), (0.5, 0.5)),
    "find_peaks": (1,),
    "flood_fill": ((0, 0), 1),
    "gaussian": (1.0,),
    "gray_dilate": ([[1]],),
    "gray_erode": ([[1]],),
    "hough_lines": (3,),
    "hough_segments": (3,),
    "inpaint": (U,),
    "line_suppression": (U, 3),
    "mark_speckles": (0, 3, 3),
    "morph_reconstruct": (U,),
    "optical_flow": (F, [[3, 3]]),
    "rect_stddev": (F, (0, 0, 2, 2)),
    "sample_line": ((0, 0), (3, 3)),
    "segment_gradient": (U,),
    "separable": ([1], [1]),
    "undistort": ((1, 1), (1, 1), 0.1),
    "watershed": (U,),
}
PICTURES = sorted(
    name
    for name in lumcv.__all__
    if inspect.isfunction(getattr(lumcv, name))
    and name not in ("sobel_kernel", "distance_steps", "pyramid_size_down", "pyramid_size_up", "undistort_map")
)


@pytest.mark.parametrize("dtype", ["int64", "uint32", "float16", "complex64", ">u2", "O"])
@pytest.mark.parametrize("name", PICTURES)
def test_other_elements_are_refused_with_those_that_would_do(name, dtype):
    image = numpy.zeros((8, 8), dtype)
    with pytest.raises(TypeError, match=r"(uint8|float32|int32)\b") as caught:
        getattr(lumcv, name)(image, *FURTHER.get(name, ()))
    assert str(image.dtype) in str(caught.value)


def test_every_error_is_met_or_prevented():
    errors = {name for status, (name, _) in STATUSES.items() if status < 0}
    assert errors == PREVENTED | (CALLS.keys() - {"lumStatusBufferTooLarge"})


def test_statuses_are_those_of_the_headers():
    assert all(getattr(raw, name) == status and sentence for status, (name, sentence) in STATUSES.items())
    assert {name for name, _ in STATUSES.values()} == {name for name in dir(raw.lib) if name.startswith("lumStatus")}


def test_every_function_has_its_arguments_and_statuses():
    assert sorted(PARAMETERS) == sorted(REFUSALS_OF) == sorted(raw.names)
    for name, parameters in PARAMETERS.items():
        assert len(raw.ffi.typeof(getattr(raw, name)).args) == len([each for each in parameters if each != "void"])
    for said in REFUSALS:
        assert said.keys() <= {name for name, _ in STATUSES.values()}


def test_status_that_no_header_knows():
    assert _status.describe(-77, "lumiAbsDiff_8u_C1R") == ("status -77", "unknown to the headers", "")


def test_warning_is_at_the_line_of_the_call():
    image = numpy.zeros((8, 8), "uint8")
    with pytest.warns(lumcv.StatusWarning) as caught:
        lumcv.min_max(image, image)
        lumcv.norm(image, image, relative=True)
        lumcv.pyramid_down(image, kernel=[1, 2, 3])
        lumcv.hough_lines(image + 1, 1, count=1)
    assert [each.filename for each in caught] == [__file__] * 4
