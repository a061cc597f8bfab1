"""Edges, corners, lines, pyramids, flow and cascades against formulas and the raw layer."""

import math
import pickle

import numpy
import pytest
from conftest import ROOT, picture, smooth, strided
from rawly import asked, ffi, image as plane, ok, pointer, size

import lumcv
from lumcv import raw

SHAPE = (40, 56)
WORDS = {"replicate": 1, "mirror": 3, "default": 5, "constant": 6}


@pytest.fixture
def scene():
    return smooth(SHAPE)


@pytest.mark.parametrize("border", ["replicate", "constant"])
@pytest.mark.parametrize("mask, filter", [(3, "sobel"), (5, "sobel"), (3, "scharr")])
@pytest.mark.parametrize("norm", ["l1", "l2"])
def test_canny(scene, mask, filter, norm, border):
    kind = {"sobel": 2, "scharr": 5}[filter]
    word = {3: 33, 5: 55}[mask]
    expected = numpy.empty_like(scene)
    buffer = asked("lumiCannyBorderGetSize", size(scene), kind, word, 1)
    ok(
        raw.lumiCannyBorder_8u_C1R(
            *plane(scene),
            *plane(expected),
            size(scene),
            kind,
            word,
            WORDS[border],
            9,
            60,
            150,
            {"l1": 2, "l2": 4}[norm],
            buffer,
        )
    )
    told = lumcv.canny(strided(scene), 60, 150, mask, norm, filter, border=border, border_value=9)
    assert (told == expected).all() and 0 < (told == 255).sum() < told.size / 2


def test_canny_is_refused_for_regions_and_other_words(scene):
    with pytest.raises(lumcv.Error) as caught:
        lumcv.canny(scene, 50, 20)
    assert (caught.value.name, caught.value.argument) == ("lumStatusBadArgument", "low, high")
    with pytest.raises(lumcv.Error, match="lumStatusBorderError"):
        lumcv.canny(scene, 1, 2, border="mirror")
    with pytest.raises(lumcv.Error, match="lumStatusMaskSizeError"):
        lumcv.canny(scene, 1, 2, size=5, filter="scharr")
    for keywords in ({"norm": "l3"}, {"filter": "prewitt"}, {"size": 7}):
        with pytest.raises(ValueError):
            lumcv.canny(scene, 1, 2, **keywords)
    with pytest.raises(TypeError, match="these would do: uint8 with 1 channel"):
        lumcv.canny(scene.astype("float32"), 1, 2)


@pytest.mark.parametrize("dtype", ["int16", "float32"])
@pytest.mark.parametrize("norm", ["l1", "l2"])
def test_canny_of_derivatives(scene, dtype, norm):
    dx, dy = (lumcv.sobel(scene, *order).astype(dtype) for order in ((1, 0), (0, 1)))
    expected = numpy.empty(SHAPE, "uint8")
    region = ffi.new("LumSizeL*", (SHAPE[1], SHAPE[0]))[0]
    buffer = asked("lumiCannyGetSize_L", region)
    name = f"lumiCanny_{'16s' if dtype == 'int16' else '32f'}8u_C1R_L"
    ok(getattr(raw, name)(*plane(dx), *plane(dy), *plane(expected), region, 60, 150, {"l1": 2, "l2": 4}[norm], buffer))
    told = lumcv.canny_derivatives(strided(dx), dy, 60, 150, norm)
    assert (told == expected).all() and (told == 255).any()


@pytest.mark.parametrize("dtype", ["uint8", "float32"])
@pytest.mark.parametrize(
    "mask, filter, window", [(3, "sobel", 3), (5, "sobel", 4), (3, "scharr", 3), (3, "central", 5)]
)
@pytest.mark.parametrize("border", ["replicate", "mirror", "constant"])
def test_harris(scene, dtype, mask, filter, window, border):
    image = scene.astype(dtype)
    expected = numpy.empty(SHAPE, "float32")
    kind, word = {"sobel": 2, "scharr": 5, "central": 8}[filter], {3: 33, 5: 55}[mask]
    code = 1 if dtype == "uint8" else 13
    buffer = asked("lumiHarrisCornerGetBufferSize", size(image), word, window, code, 1)
    name = "lumiHarrisCorner_8u32f_C1R" if dtype == "uint8" else "lumiHarrisCorner_32f_C1R"
    ok(
        getattr(raw, name)(
            *plane(image), *plane(expected), size(image), kind, word, window, 0.05, 0.5, WORDS[border], 20, buffer
        )
    )
    told = lumcv.harris(strided(image), 0.05, mask, window, 0.5, filter, border, 20)
    assert told.tobytes() == expected.tobytes()


def test_harris_formula(scene):
    dx, dy = (lumcv.sobel(scene, *order).astype(float) for order in ((1, 0), (0, 1)))
    mean = [
        sum(numpy.roll(p, (j, i), (0, 1)) for j in (-1, 0, 1) for i in (-1, 0, 1)) / 9
        for p in (dx * dx, dx * dy, dy * dy)
    ]
    a, b, c = mean
    expected = (a * c - b * b - 0.04 * (a + c) ** 2) * 81
    inner = (slice(2, -2), slice(2, -2))
    assert numpy.allclose(lumcv.harris(scene)[inner], expected[inner], rtol=1e-3, atol=1e-3 * numpy.abs(expected).max())


@pytest.mark.parametrize("dtype", ["uint8", "float32"])
@pytest.mark.parametrize("mask, filter, window", [(3, "sobel", 3), (5, "sobel", 5), (3, "scharr", 3)])
@pytest.mark.parametrize("border", ["replicate", "mirror", "constant", "default"])
def test_eigenvalues(scene, dtype, mask, filter, window, border):
    image = scene.astype(dtype)
    types = "8u32f" if dtype == "uint8" else "32f"
    kind = {"sobel": 2, "scharr": 1}[filter]
    for name, elements, operation in (("MinEigenVal", 1, lumcv.min_eigen), ("EigenValsVecs", 6, lumcv.eigen_vectors)):
        expected = numpy.empty(SHAPE if elements == 1 else (*SHAPE, 6), "float32")
        buffer = asked(f"lumi{name}GetBufferSize_{types}_C1R", size(image), mask, window)
        ok(
            getattr(raw, f"lumi{name}Border_{types}_C1R")(
                *plane(image), *plane(expected), size(image), kind, mask, window, WORDS[border], 20, buffer
            )
        )
        told = operation(strided(image), mask, window, filter, border, 20)
        assert told.tobytes() == expected.tobytes()


def test_smaller_eigenvalue_is_one_of_both(scene):
    smaller, both = lumcv.min_eigen(scene), lumcv.eigen_vectors(scene)
    found = both[:, :, 1] != 0
    assert found.any() and numpy.allclose(smaller[found], both[found][:, 1], rtol=1e-3, atol=1e-6)


@pytest.mark.parametrize("dtype", ["float32", "int32"])
@pytest.mark.parametrize("connectivity", [4, 8])
def test_peaks(dtype, connectivity):
    image = picture((12, 15), "int16").astype(dtype)
    expected = []
    for y in range(2, 10):
        for x in range(2, 13):
            v = image[y, x]
            near = [image[y + j, x + i] for j in (-1, 0, 1) for i in (-1, 0, 1) if connectivity == 8 or not (i and j)]
            if abs(v) > 500 and v == (max(near) if v > 0 else min(near)):
                expected.append([x, y])
    assert lumcv.find_peaks(image, 500, connectivity, margin=2).tolist() == expected
    assert lumcv.find_peaks(image, 500, connectivity, margin=2, count=3).tolist() == expected[:3]


def test_peaks_errors():
    with pytest.raises(lumcv.Error) as caught:
        lumcv.find_peaks(numpy.zeros((5, 5), "float32"), 1, margin=3)
    assert caught.value.name == "lumStatusSizeError"
    with pytest.raises(lumcv.Error):
        lumcv.find_peaks(numpy.zeros((5, 5), "float32"), 1, count=0)


@pytest.mark.parametrize("border", ["replicate", "constant"])
def test_line_suppression(scene, border):
    features, expected = picture(SHAPE, "uint8"), numpy.empty(SHAPE, "uint8")
    buffer = asked("lumiLineSuppressionGetBufferSize", size(scene), 55, 4, 1, 1)
    ok(
        raw.lumiLineSuppression_8u_C1R(
            *plane(scene), *plane(features), *plane(expected), size(scene), 2, 55, 4, 30, WORDS[border], 20, buffer
        )
    )
    told = lumcv.line_suppression(strided(scene), strided(features), 30, 5, 4, border=border, border_value=20)
    assert (told == expected).all()


CIRCLE = [
    (0, 3),
    (-1, 3),
    (-2, 2),
    (-3, 1),
    (-3, 0),
    (-3, -1),
    (-2, -2),
    (-1, -3),
    (0, -3),
    (1, -3),
    (2, -2),
    (3, -1),
    (3, 0),
    (3, 1),
    (2, 2),
    (1, 3),
]


def test_fast_corners_by_the_segment_test(scene):
    threshold, arc = 12, 9
    expected = {}
    for y in range(3, SHAPE[0] - 3):
        for x in range(3, SHAPE[1] - 3):
            d = [int(scene[y + j, x + i]) - int(scene[y, x]) for i, j in CIRCLE]
            best = max(max(min(s * d[(k + n) % 16] for n in range(arc)) for k in range(16)) for s in (1, -1))
            if best > threshold:
                expected[x, y] = best
    corners = lumcv.fast_corners(strided(scene), threshold, arc=arc, suppress=False)
    assert {(c["x"], c["y"]): int(c["score"]) for c in corners} == expected and len(expected) > 5
    marks, scores = lumcv.fast_marks(scene, threshold, suppress=False)
    assert {(x, y) for y, x in numpy.argwhere(marks)} == set(expected)
    kept = lumcv.fast_corners(scene, threshold)
    local = {
        (x, y)
        for (x, y), s in expected.items()
        if all(expected.get((x + i, y + j), 0) <= s for i in (-1, 0, 1) for j in (-1, 0, 1))
    }
    assert {(c["x"], c["y"]) for c in kept} == local


def test_fast_orientations(scene):
    corners = lumcv.fast_corners(scene, 12, bins=16)
    assert len(corners) and (corners["bin"] >= 0).all() and (corners["bin"] < 16).all()
    assert numpy.allclose(corners["angle"], corners["bin"] * 22.5)


def test_fast_without_corners():
    assert len(lumcv.fast_corners(numpy.zeros((9, 9), "uint8"))) == 0


@pytest.mark.parametrize(
    "keywords, name, argument",
    [
        ({"threshold": -1}, "lumStatusThresholdError", "threshold"),
        ({"radius": 4}, "lumStatusBadArgument", "radius"),
        ({"arc": 8}, "lumStatusOutOfRange", "arc"),
        ({"bins": 65}, "lumStatusOutOfRange", "bins"),
    ],
)
def test_fast_errors(scene, keywords, name, argument):
    with pytest.raises(lumcv.Error) as caught:
        lumcv.fast_corners(scene, **keywords)
    assert caught.value.name == name and argument in caught.value.argument.split(", ")


def test_hough_lines_by_votes():
    edges = numpy.zeros((30, 40), "uint8")
    edges[12, 3:35] = 1
    numpy.fill_diagonal(edges[2:25, 5:28], 255)
    for image in (edges, strided(edges), edges != 0):
        lines = lumcv.hough_lines(image, 18, theta=math.pi / 60)
        assert any(abs(rho - 12) < 1 and abs(theta - math.pi / 2) < 0.1 for rho, theta in lines)
        # y = x - 3: the normal at 3 pi / 4 has the distance -3 / sqrt(2).
        assert any(abs(rho + 3 / math.sqrt(2)) < 1.1 and abs(theta - 3 * math.pi / 4) < 0.1 for rho, theta in lines)
    within = lumcv.hough_lines(edges, 18, theta=math.pi / 60, limits=((0, 1.4), (20, 1.8)))
    assert len(within) >= 1 and (numpy.abs(within[:, 1] - math.pi / 2) < 0.2).all()


def test_hough_list_that_is_full_warns():
    edges = numpy.zeros((20, 20), "uint8")
    edges[5], edges[10], edges[15] = 1, 1, 1
    with pytest.warns(lumcv.StatusWarning, match="lumStatusResultTruncated"):
        assert len(lumcv.hough_lines(edges, 15, count=1)) == 1
    with pytest.warns(lumcv.StatusWarning, match="lumStatusResultTruncated"):
        assert len(lumcv.hough_segments(edges, 8, length=10, count=1)) == 1


def test_hough_segments():
    edges = numpy.zeros((30, 50), "uint8")
    edges[9, 4:41] = 1
    edges[9, 20] = 0
    segments = lumcv.hough_segments(strided(edges), 10)
    assert len(segments) == 1 and set(segments[0][1::2]) == {9} and abs(int(segments[0][0]) - int(segments[0][2])) >= 34
    assert (segments == lumcv.hough_segments(edges, 10)).all()


@pytest.mark.parametrize(
    "call, name, argument",
    [
        (lambda e: lumcv.hough_lines(e, 0), "lumStatusBadArgument", "threshold"),
        (lambda e: lumcv.hough_lines(e, 5, rho=0), "lumStatusBadArgument", ""),
        (lambda e: lumcv.hough_lines(e, 5, count=0), "lumStatusSizeError", "count"),
        (lambda e: lumcv.hough_lines(e, 5, limits=((5, 0), (1, 1))), "lumStatusEmptyRange", "limits"),
        (lambda e: lumcv.hough_segments(e, 0), "lumStatusBadArgument", "threshold"),
        (lambda e: lumcv.hough_segments(e, 5, length=-1), "lumStatusBadArgument", "length"),
    ],
)
def test_hough_errors(call, name, argument):
    with pytest.raises(lumcv.Error) as caught:
        call(numpy.zeros((20, 20), "uint8"))
    assert caught.value.name == name and argument in caught.value.argument


def test_hough_accumulator_that_is_too_large():
    with pytest.raises(lumcv.Error, match="lumStatusBufferTooLarge"):
        lumcv.hough_lines(numpy.zeros((8, 8), "uint8"), 5, rho=1e-8)
    with pytest.raises(TypeError, match="lines are found in uint8"):
        lumcv.hough_lines(numpy.zeros((8, 8), "float32"), 5)


@pytest.mark.parametrize("dtype", ["uint8", "uint16", "float32"])
@pytest.mark.parametrize("channels", [1, 3])
@pytest.mark.parametrize("rate", [2.0, 1.5, 3.3])
def test_pyramid_layers(dtype, channels, rate):
    image = picture(SHAPE if channels == 1 else (*SHAPE, 3), dtype)
    kernel = numpy.array([1, 4, 6, 4, 1], "float32" if dtype == "float32" else "int16")
    suffix = f"{ {'uint8': '8u', 'uint16': '16u', 'float32': '32f'}[dtype]}_C{channels}R"
    smaller = lumcv.pyramid_size_down(SHAPE, rate)
    told = lumcv.pyramid_down(strided(image), rate)
    assert told.shape == (*smaller, *image.shape[2:])
    for direction, source, result in (("Down", image, told), ("Up", told, lumcv.pyramid_up(told, rate, SHAPE))):
        expected = numpy.empty_like(result)
        memory, buffer = asked(f"lumiPyramidLayer{direction}GetSize_{suffix}", size(source), rate, 5, count=2)
        state = ffi.new(f"LumPyramidLayer{direction}State**")
        ok(
            getattr(raw, f"lumiPyramidLayer{direction}Init_{suffix}")(
                state, size(source), rate, pointer(kernel), 5, 2, memory, buffer
            )
        )
        ok(
            getattr(raw, f"lumiPyramidLayer{direction}_{suffix}")(
                *plane(source), size(source), *plane(expected), size(expected), state[0]
            )
        )
        assert result.tobytes() == expected.tobytes()


def test_pyramid_of_flat_picture_is_flat():
    levels = lumcv.pyramid(numpy.full((33, 50, 3), 77, "uint8"), 9)
    assert [level.shape[:2] for level in levels] == [(33, 50), (17, 25), (9, 13), (5, 7), (3, 4), (2, 2), (1, 1)]
    assert all((level == 77).all() for level in levels)


def test_pyramid_errors_and_warnings():
    image = picture(SHAPE, "uint8")
    with pytest.raises(lumcv.Error) as caught:
        lumcv.pyramid_down(image, 1.0)
    assert caught.value.argument == "rate"
    with pytest.raises(lumcv.Error) as caught:
        lumcv.pyramid_down(image, kernel=[1, 1])
    assert "taps" in caught.value.argument
    with pytest.warns(lumcv.StatusWarning, match="lumStatusKernelNotSymmetric"):
        lumcv.pyramid_down(image, kernel=[1, 2, 3])
    with pytest.raises(ValueError, match="whole numbers"):
        lumcv.pyramid_down(image, kernel=[0.5, 1, 0.5])
    with pytest.raises(ValueError, match="kernel is a sequence of numbers"):
        lumcv.pyramid_down(image, kernel=[[1, 2, 1]])
    with pytest.raises(lumcv.Error):
        lumcv.pyramid_up(image, size=(3, 3))


@pytest.mark.parametrize("dtype", ["uint8", "uint16", "float32"])
def test_flow_follows_a_shift(dtype):
    y, x = numpy.mgrid[:80, :100]
    scale = 200 if dtype == "uint16" else 1
    frames = [
        ((128 + 50 * numpy.sin((x - dx) / 6) + 50 * numpy.cos((y - dy) / 7 + x / 20)) * scale).astype(dtype)
        for dx, dy in ((0, 0), (2.5, -1.25))
    ]
    frames[1] = (
        (128 + 50 * numpy.sin((x - 2.5) / 6) + 50 * numpy.cos((y + 1.25) / 7 + (x - 2.5) / 20)) * scale
    ).astype(dtype)
    points = numpy.array([[30, 30], [50.5, 41.25], [70, 55]])
    flow = lumcv.optical_flow(strided(frames[0]), frames[1], points)
    assert (flow.status == 0).all()
    assert numpy.abs(flow.points - points - [2.5, -1.25]).max() < 0.1
    kept = [lumcv.pyramid(frame, 3) for frame in frames]
    again = lumcv.optical_flow(*kept, points)
    assert all((a == b).all() for a, b in zip(flow, again))
    guessed = lumcv.optical_flow(*kept, points, guess=points + [2, -1], levels=0)
    assert numpy.abs(guessed.points - flow.points).max() < 0.1


def test_flow_loses_points_on_flat_ground():
    flat = numpy.full((40, 40), 9, "uint8")
    flow = lumcv.optical_flow(flat, flat, [[20, 20]])
    assert flow.status[0] > 0 and flow.error[0] == 0


def test_flow_errors():
    image = smooth(SHAPE)
    with pytest.raises(lumcv.Error) as caught:
        lumcv.optical_flow(image, image, [[3, 3]], iterations=0)
    assert "iterations" in caught.value.argument
    with pytest.raises(lumcv.Error):
        lumcv.optical_flow(image, image, [[3, 3]], window=0)
    with pytest.raises(ValueError, match=r"a row \(x, y\)"):
        lumcv.optical_flow(image, image, [3, 3])
    with pytest.raises(TypeError, match="levels of both"):
        lumcv.optical_flow(image, image.astype("float32"), [[3, 3]])
    with pytest.raises(ValueError, match="the same sizes"):
        lumcv.optical_flow(image, image[1:], [[3, 3]])
    with pytest.raises(ValueError, match="level 1 of the pyramid has 40 x 56 pixels, not 20 x 28"):
        lumcv.optical_flow([image, image], [image, image], [[3, 3]])


def haar(sums_type):
    """A stage by NumPy: rectangles of sums at each place."""
    classifiers = [
        lumcv.Classifier([(0, 0, 6, 6, -1), (2, 2, 2, 2, 9)], 5, 0.25, 1),
        lumcv.Classifier([(0, 0, 3, 6, 1), (3, 0, 3, 6, -1)], -2, 0.5, 0.75),
    ]
    return classifiers


@pytest.mark.parametrize("sums_type", ["int32", "float32"])
def test_haar_stage(scene, sums_type):
    sums, squares = lumcv.integral(scene, sums_type, "float64")
    deviations = lumcv.rect_stddev(sums, squares, (0, 0, 6, 6))
    stage = lumcv.HaarStage(haar(sums_type), threshold=1.2)
    mask = numpy.ones(deviations.shape, "uint8")
    mask[::5] = 0
    expected = mask.copy()
    for y, x in numpy.argwhere(mask):
        total = 0.0
        for each in stage.classifiers:
            t = sum(
                w * float(scene[y + ry : y + ry + rh, x + rx : x + rx + rw].sum())
                for rx, ry, rw, rh, w in each.rectangles
            )
            total += each.below if t < each.threshold * float(deviations[y, x]) else each.above
        expected[y, x] = total >= 1.2
    left = stage.apply(strided(sums), deviations, mask)
    assert (mask == expected).all() and left == expected.sum() and 0 < left < expected.size
    copy = pickle.loads(pickle.dumps(stage))
    assert copy.window == stage.window == (6, 6)


def test_cascade_of_a_file_finds_discs():
    cascade = lumcv.HaarCascade.load(ROOT / "share/cascades/bright-disc.json")
    y, x = numpy.mgrid[:60, :60]
    scene = numpy.where((x - 30) ** 2 + (y - 25) ** 2 <= 49, 220, 20).astype("uint8")
    windows = cascade.windows(scene)
    assert len(windows) > 0
    assert numpy.abs(windows + [10, 10] - [30, 25]).max() <= 4
    assert len(cascade.windows(scene, numpy.zeros((41, 41), bool))) == 0
    assert cascade.windows(numpy.zeros((5, 5), "uint8")).shape == (0, 2)


def test_haar_refusals(scene):
    stage = lumcv.HaarStage(haar("int32"), 1)
    sums = lumcv.integral(scene)
    with pytest.raises(ValueError, match="reach beyond the sums"):
        stage.apply(sums, numpy.zeros(SHAPE, "float32"), numpy.zeros(SHAPE, "uint8"))
    with pytest.raises(TypeError, match="int32 or float32"):
        stage.apply(sums.astype("float64"), numpy.zeros((3, 3), "float32"), numpy.zeros((3, 3), "uint8"))
    with pytest.raises(ValueError, match="mask has the shape"):
        stage.apply(sums, numpy.zeros((3, 3), "float32"), numpy.zeros((3, 4), "uint8"))
    with pytest.raises(lumcv.Error) as caught:
        lumcv.HaarStage([lumcv.Classifier([(-1, 0, 2, 2, 1)], 0, 0, 0)], 1)
    assert caught.value.name == "lumStatusBadArgument"
    with pytest.raises(lumcv.Error):
        lumcv.HaarStage([], 1)
    with pytest.raises(ValueError, match="beyond the window"):
        lumcv.HaarCascade([stage], (5, 5))
    with pytest.raises(ValueError, match="lumcv-cascade-1"):
        lumcv.HaarCascade.load(ROOT / "CMakePresets.json")
