"""Distances, repair, segmentation, fills, geometry, patches, motion and background."""

import collections
import math

import numpy
import pytest
from conftest import picture, smooth, strided
from rawly import asked, ffi, image as plane, ok, pointer, size

import lumcv
from lumcv import raw

SHAPE = (30, 44)
F = numpy.float32


@pytest.fixture
def blobs():
    return (smooth(SHAPE) > 120).astype("uint8")


@pytest.mark.parametrize("mask", [3, 5])
@pytest.mark.parametrize("norm", ["inf", "l1", "l2"])
@pytest.mark.parametrize("dtype", ["uint8", "uint16", "float32"])
def test_chamfer_distance(blobs, mask, norm, dtype):
    for image in (blobs, strided(blobs), blobs != 0):
        expected = numpy.empty(SHAPE, dtype)
        steps = numpy.zeros(3, "float32" if dtype == "float32" else "int32")
        token = "32f" if dtype == "float32" else "32s"
        ok(
            getattr(raw, f"lumiGetDistanceTransformMask_{token}")(
                mask, {"inf": 0, "l1": 1, "l2": 2}[norm], pointer(steps)
            )
        )
        types = {"uint8": "8u", "uint16": "8u16u", "float32": "8u32f"}[dtype]
        whole = numpy.ascontiguousarray(image)
        ok(
            getattr(raw, f"lumiDistanceTransform_{mask}x{mask}_{types}_C1R")(
                *plane(whole), *plane(expected), size(whole), pointer(steps)
            )
        )
        assert (lumcv.distance(image, mask, norm, dtype) == expected).all()
        assert (lumcv.distance(image, mask, dtype=dtype, steps=steps[: (mask + 1) // 2]) == expected).all()


def test_distance_along_axes_is_exact(blobs):
    zeros = numpy.argwhere(blobs == 0)
    y, x = numpy.mgrid[: SHAPE[0], : SHAPE[1]]
    away = numpy.stack([numpy.abs(y[..., None] - zeros[:, 0]), numpy.abs(x[..., None] - zeros[:, 1])])
    assert (lumcv.distance(blobs, 3, "l1") == away.sum(axis=0).min(axis=-1)).all()
    assert (lumcv.distance(blobs, 3, "inf") == away.max(axis=0).min(axis=-1)).all()
    assert numpy.allclose(
        lumcv.true_distance(strided(blobs)), numpy.sqrt((away**2).sum(axis=0)).min(axis=-1), rtol=1e-6
    )


def test_distance_refusals(blobs):
    with pytest.raises(TypeError, match="these would do: uint8, uint16, float32"):
        lumcv.distance(blobs, dtype="float64")
    with pytest.raises(TypeError, match="uint8 or bool"):
        lumcv.true_distance(blobs.astype(F))
    with pytest.raises(ValueError, match="2 lengths with size 3"):
        lumcv.distance(blobs, 3, steps=[1, 2, 3])
    with pytest.raises(lumcv.Error) as caught:
        lumcv.distance(blobs, 3, steps=[0, 1])
    assert (caught.value.name, caught.value.argument) == ("lumStatusMetricError", "steps")
    with pytest.raises(TypeError, match="these would do"):
        lumcv.distance_steps(dtype="int64")
    with pytest.raises(ValueError, match="norm is"):
        lumcv.distance(blobs, norm="l3")


@pytest.mark.parametrize("radius", [0.0, 3.5])
def test_fast_marching(blobs, radius):
    expected = numpy.empty(SHAPE, F)
    buffer = asked("lumiFastMarchingGetBufferSize_8u32f_C1R", size(blobs))
    ok(raw.lumiFastMarching_8u32f_C1R(*plane(blobs), *plane(expected), size(blobs), radius, buffer))
    assert (lumcv.fast_marching(strided(blobs), radius) == expected).all()
    assert ((expected > 0) == (blobs != 0)).all()
    with pytest.raises(lumcv.Error) as caught:
        lumcv.fast_marching(blobs, -1)
    assert caught.value.argument == "radius"


@pytest.mark.parametrize("channels", [1, 3])
@pytest.mark.parametrize("method", ["front", "isophote"])
def test_inpaint(channels, method):
    image = smooth(SHAPE) if channels == 1 else numpy.stack([smooth(SHAPE, seed=n) for n in range(3)], axis=2)
    hole = numpy.zeros(SHAPE, "uint8")
    hole[10:15, 12:20], hole[20, 30:40] = 1, 255
    field = lumcv.fast_marching(hole)
    code = {"front": 0, "isophote": 1}[method]
    blocks = asked("lumiInpaintGetSize", *plane(hole), size(hole), 4.0, code, channels, count=2)
    state = ffi.new("LumInpaintState**")
    ok(
        getattr(raw, f"lumiInpaintInit_8u_C{channels}R")(
            state, *plane(field), *plane(hole), size(hole), 4.0, code, *blocks
        )
    )
    expected = numpy.empty_like(image)
    ok(getattr(raw, f"lumiInpaint_8u_C{channels}R")(*plane(image), *plane(expected), size(hole), state[0], blocks[1]))
    told = lumcv.inpaint(strided(image), hole != 0, 4.0, method)
    assert (told == expected).all()
    assert (told[hole == 0] == image[hole == 0]).all()
    painter = lumcv.Inpainter(hole, 4.0, method, channels)
    assert (painter.apply(image) == told).all() and (painter.apply(image) == told).all()


def test_inpaint_refusals():
    image, hole = smooth(SHAPE), numpy.ones(SHAPE, "uint8")
    with pytest.raises(lumcv.Error) as caught:
        lumcv.inpaint(image, hole, radius=0.5)
    assert "radius" in caught.value.argument.split(", ")
    with pytest.raises(ValueError, match="method is"):
        lumcv.inpaint(image, hole, method="patch")
    painter = lumcv.Inpainter(hole)
    with pytest.raises(ValueError, match="for pictures of"):
        painter.apply(image[1:])
    with pytest.raises(TypeError, match="for uint8 with 1 channels"):
        painter.apply(image.astype("uint16"))
    with pytest.raises(ValueError, match="distances is float32"):
        lumcv.Inpainter(hole, distances=numpy.zeros(SHAPE))


def seeds(dtype="uint8"):
    markers = numpy.zeros(SHAPE, dtype)
    for label, (y, x) in enumerate([(4, 5), (20, 9), (12, 30), (25, 40)], 1):
        markers[y : y + 2, x : x + 2] = label
    return markers


@pytest.mark.parametrize(
    "relief, labels, types", [("uint8", "uint8", "8u"), ("uint8", "uint16", "8u16u"), ("float32", "uint16", "32f16u")]
)
@pytest.mark.parametrize("method", ["flooding", "raster"])
@pytest.mark.parametrize("boundaries", [0, 4, 8])
def test_watershed(relief, labels, types, method, boundaries):
    if method == "flooding" and relief == "float32":
        with pytest.raises(lumcv.Error, match="lumStatusModeError"):
            lumcv.watershed(smooth(SHAPE, relief), seeds(labels))
        return
    image = smooth(SHAPE, relief)
    for norm, keywords in (
        ((0, {"connectivity": 8}), (1, {"connectivity": 4}))
        if method == "flooding"
        else tuple(
            (norm, {"length": length}) for norm, length in enumerate(("chessboard", "cityblock", "chamfer", "eikonal"))
        )
    ):
        expected = seeds(labels)
        flags = {"flooding": 1, "raster": 2}[method] | {0: 0, 4: 64, 8: 128}[boundaries]
        buffer = asked(f"lumiSegmentWatershedGetBufferSize_{types}_C1R", size(image))
        ok(
            getattr(raw, f"lumiSegmentWatershed_{types}_C1IR")(
                *plane(image), *plane(expected), size(image), norm, flags, buffer
            )
        )
        told = lumcv.watershed(strided(image), strided(seeds(labels)), method, boundaries=boundaries, **keywords)
        assert (told == expected).all()
        given = seeds(labels)
        assert lumcv.watershed(image, given, method, boundaries=boundaries, out=given, **keywords) is given
        assert (given == expected).all()


@pytest.mark.parametrize("channels", [1, 3])
@pytest.mark.parametrize("boundaries", [0, 4, 8])
def test_segment_gradient(channels, boundaries):
    image = smooth(SHAPE) if channels == 1 else numpy.stack([smooth(SHAPE, seed=n) for n in range(3)], axis=2)
    for norm, connectivity in ((0, 8), (1, 4)):
        expected = seeds()
        buffer = asked(f"lumiSegmentGradientGetBufferSize_8u_C{channels}R", size(image))
        flags = {0: 0, 4: 64, 8: 128}[boundaries]
        ok(
            getattr(raw, f"lumiSegmentGradient_8u_C{channels}IR")(
                *plane(image), *plane(expected), size(image), norm, flags, buffer
            )
        )
        assert (lumcv.segment_gradient(strided(image), seeds(), connectivity, boundaries) == expected).all()


@pytest.mark.parametrize("dtype", ["uint8", "uint16"])
@pytest.mark.parametrize("connectivity", [4, 8])
def test_bound_segments(dtype, connectivity):
    labels = (smooth(SHAPE) // 60 + 1).astype(dtype)
    expected = labels.copy()
    ok(
        getattr(raw, f"lumiBoundSegments_{'8u' if dtype == 'uint8' else '16u'}_C1IR")(
            *plane(expected), size(labels), 200, {8: 0, 4: 1}[connectivity]
        )
    )
    assert (lumcv.bound_segments(strided(labels), 200, connectivity) == expected).all() and (expected == 200).any()


def test_segmentation_refusals():
    image = smooth(SHAPE)
    for keywords in (
        {"method": "merge"},
        {"boundaries": 5},
        {"connectivity": 6},
        {"method": "raster", "length": "far"},
    ):
        with pytest.raises(ValueError):
            lumcv.watershed(image, seeds(), **keywords)
    with pytest.raises(TypeError, match="uint16 or uint8, not int32"):
        lumcv.watershed(image, seeds("int32"))
    with pytest.raises(TypeError, match="markers have uint8"):
        lumcv.segment_gradient(image, seeds("uint16"))
    with pytest.raises(ValueError, match="the image has 30 x 44"):
        lumcv.watershed(image, seeds()[1:])
    with pytest.raises(ValueError, match="outside of uint8"):
        lumcv.bound_segments(seeds(), 256)
    with pytest.raises(ValueError, match="out has the shape"):
        lumcv.watershed(image, seeds(), out=numpy.zeros((2, 2), "uint8"))


def flooded(image, seed, belongs, connectivity):
    steps = [(0, 1), (1, 0), (0, -1), (-1, 0)] + ([(1, 1), (1, -1), (-1, 1), (-1, -1)] if connectivity == 8 else [])
    found, queue = {seed}, collections.deque([seed])
    while queue:
        x, y = queue.popleft()
        for i, j in steps:
            near = (x + i, y + j)
            if 0 <= near[0] < image.shape[1] and 0 <= near[1] < image.shape[0] and near not in found:
                if belongs(image[near[1], near[0]], image[y, x]):
                    found.add(near)
                    queue.append(near)
    return found


@pytest.mark.parametrize(
    "dtype, channels",
    [("uint8", 1), ("uint8", 3), ("uint16", 1), ("uint16", 3), ("float32", 1), ("float32", 3), ("int32", 1)],
)
@pytest.mark.parametrize("rule", ["exact", "range", "floating"])
@pytest.mark.parametrize("connectivity", [4, 8])
def test_flood_fill(dtype, channels, rule, connectivity):
    if dtype == "int32" and rule != "exact":
        with pytest.raises(TypeError, match="these would do"):
            lumcv.flood_fill(numpy.zeros(SHAPE, dtype), (0, 0), 1, delta=1)
        return
    tones = smooth(SHAPE) // (40 if rule == "exact" else 1)
    image = (tones if channels == 1 else numpy.stack([tones, tones // 2, 255 - tones], axis=2)).astype(dtype)
    seed = (20, 11)
    start = image[seed[1], seed[0]].astype(int)
    rules = {
        "exact": ({}, lambda c, r: (c == image[seed[1], seed[0]]).all()),
        "range": ({"delta": (9, 14)}, lambda c, r: ((c >= start - 9) & (c <= start + 14)).all()),
        "floating": (
            {"delta": 4, "floating": True},
            lambda c, r: (numpy.abs(c.astype(int) - r.astype(int)) <= 4).all(),
        ),
    }
    keywords, belongs = rules[rule]
    found = flooded(image, seed, belongs, connectivity)
    # A value that no pixel near the region's own has.
    value = 200 if channels == 1 else (200, 10, 90)
    told = lumcv.flood_fill(strided(image), seed, value, connectivity=connectivity, **keywords)
    expected = image.copy()
    for x, y in found:
        expected[y, x] = value
    assert (told.image == expected).all() and told.area >= len(found) > 1
    xs, ys = zip(*found)
    assert told.rect == (min(xs), min(ys), max(xs) - min(xs) + 1, max(ys) - min(ys) + 1)


def test_flood_fill_refusals():
    image = smooth(SHAPE)
    with pytest.raises(lumcv.Error) as caught:
        lumcv.flood_fill(image, (44, 0), 1)
    assert (caught.value.name, caught.value.argument) == ("lumStatusOutOfRange", "seed")
    with pytest.raises(ValueError, match="needs a delta"):
        lumcv.flood_fill(image, (0, 0), 1, floating=True)
    with pytest.raises(ValueError, match="value lies outside of uint8"):
        lumcv.flood_fill(image, (0, 0), 256)
    with pytest.raises(ValueError, match="pair"):
        lumcv.flood_fill(image, (0, 0), 1, delta=(1, 2, 3))
    given = image.copy()
    assert lumcv.flood_fill(given, (0, 0), 1, delta=30, out=given).image is given


@pytest.mark.parametrize("connectivity", [4, 8])
def test_label(blobs, connectivity):
    expected, count = numpy.zeros(SHAPE, int), 0
    for y in range(SHAPE[0]):
        for x in range(SHAPE[1]):
            if blobs[y, x] and not expected[y, x]:
                count += 1
                for i, j in flooded(blobs, (x, y), lambda c, r: c != 0, connectivity):
                    expected[j, i] = count
    for image in (blobs, strided(blobs), blobs != 0):
        labels, found = lumcv.label(image, connectivity)
        assert found == count and labels.dtype == "int32" and (labels == expected).all()
    for dtype in ("uint8", "uint16"):
        labels, found = lumcv.label(blobs.astype(dtype), connectivity, dtype)
        assert found == count and labels.dtype == dtype and (labels == expected).all()


def test_label_refusals(blobs):
    with pytest.raises(lumcv.Error) as caught:
        lumcv.label(blobs, first=0)
    assert "first" in caught.value.argument
    with pytest.raises(TypeError, match="labels of int32 are for uint8"):
        lumcv.label(blobs.astype("uint16"))
    with pytest.raises(TypeError, match="from uint8"):
        lumcv.label(blobs, dtype="uint16")


@pytest.mark.parametrize("dtype", ["uint8", "uint16", "int16", "float32"])
def test_speckles(dtype):
    image = (smooth(SHAPE) // 8 * 8).astype(dtype)
    expected = image.copy()
    done = set()
    for y in range(SHAPE[0]):
        for x in range(SHAPE[1]):
            if (x, y) not in done and image[y, x] != 7:
                found = flooded(image, (x, y), lambda c, r: abs(float(c) - float(r)) <= 8 and c != 7, 4)
                done |= found
                if len(found) <= 12:
                    for i, j in found:
                        expected[j, i] = 7
    assert (lumcv.mark_speckles(strided(image), 7, 12, 8) == expected).all() and (expected == 7).any()
    assert lumcv.mark_speckles(image, 7, 12, 8, out=image) is image


@pytest.mark.parametrize("dtype", ["uint8", "uint16", "float32"])
@pytest.mark.parametrize("channels", [1, 3])
def test_undistort(dtype, channels):
    image = picture(SHAPE if channels == 1 else (*SHAPE, 3), dtype)
    lens = {"focal": (40, 42), "centre": (21, 15), "k1": 0.2, "k2": -0.05}
    expected = numpy.zeros_like(image)
    token = {"uint8": "8u", "uint16": "16u", "float32": "32f"}[dtype]
    ok(
        getattr(raw, f"lumiUndistortRadial_{token}_C{channels}R")(
            *plane(image), *plane(expected), size(image), 40, 42, 21, 15, 0.2, -0.05, ffi.NULL
        )
    )
    assert (lumcv.undistort(strided(image), **lens) == expected).all()
    kept = numpy.ones_like(image)
    told = lumcv.undistort(image, **lens, out=kept)
    assert told is kept and ((told == expected) | (expected == 0)).all()


def test_maps_and_lines_into_given_arrays():
    lens = {"focal": (30, 31), "centre": (20, 18), "k1": -0.2}
    given = numpy.zeros(SHAPE, "float32"), numpy.zeros(SHAPE, "float32")
    told = lumcv.undistort_map(SHAPE, **lens, out=given)
    assert told[0] is given[0] and told[1] is given[1]
    assert all((a == b).all() for a, b in zip(given, lumcv.undistort_map(SHAPE, **lens)))
    image = picture((*SHAPE, 3), "uint8")
    line = numpy.zeros((12, 3), "uint8")
    assert lumcv.sample_line(image, (1, 2), (12, 7), out=line) is line
    assert (line == lumcv.sample_line(image, (1, 2), (12, 7))).all()
    with pytest.raises(ValueError, match="the result has"):
        lumcv.sample_line(image, (1, 2), (12, 7), out=line[1:])


def test_undistort_map_leads_to_the_same_places():
    image = picture(SHAPE, "float32")
    lens = {"focal": (40, 42), "centre": (21, 15), "k1": 0.2, "k2": -0.05}
    x, y = lumcv.undistort_map(SHAPE, **lens)
    inside = (x >= 0) & (x < SHAPE[1] - 1) & (y >= 0) & (y < SHAPE[0] - 1)
    left, top = numpy.floor(x).astype(int), numpy.floor(y).astype(int)
    u, v = x - left, y - top
    left, top = numpy.clip(left, 0, SHAPE[1] - 2), numpy.clip(top, 0, SHAPE[0] - 2)
    upper = image[top, left] * (1 - u) + image[top, left + 1] * u
    lower = image[top + 1, left] * (1 - u) + image[top + 1, left + 1] * u
    expected = numpy.where(inside, upper * (1 - v) + lower * v, 0)
    assert inside.any() and numpy.allclose(lumcv.undistort(image, **lens), expected, atol=1e-3)
    tangential = lumcv.undistort_map(SHAPE, **lens, p1=0.01, p2=-0.02)
    ny, nx = numpy.mgrid[: SHAPE[0], : SHAPE[1]]
    nx, ny = (nx - 21) / 40, (ny - 15) / 42
    r2 = nx * nx + ny * ny
    radial = 1 + 0.2 * r2 - 0.05 * r2 * r2
    assert numpy.allclose(
        tangential[0], 40 * (nx * radial + 0.02 * nx * ny - 0.02 * (r2 + 2 * nx * nx)) + 21, atol=1e-3
    )


@pytest.mark.parametrize("dtype", ["uint8", "uint16", "float32"])
@pytest.mark.parametrize("channels", [1, 3])
@pytest.mark.parametrize(
    "start, end", [((3, 4), (30, 20)), ((40, 2), (1, 29)), ((5, 5), (5, 5)), ((0, 9), (43, 9)), ((7, 28), (9, 1))]
)
def test_sample_line(dtype, channels, start, end):
    image = picture(SHAPE if channels == 1 else (*SHAPE, 3), dtype)
    dx, dy = abs(end[0] - start[0]), abs(end[1] - start[1])
    major, minor, steep = max(dx, dy), min(dx, dy), dy >= dx
    x, y, e, expected = *start, major, []
    sx, sy = (1 if end[axis] >= start[axis] else -1 for axis in (0, 1))
    for _ in range(major + 1):
        expected.append(image[y, x])
        e -= 2 * minor
        if e < 0:
            x, y = (x + sx, y) if steep else (x, y + sy)
            e += 2 * major
        x, y = (x, y + sy) if steep else (x + sx, y)
    assert (lumcv.sample_line(strided(image), start, end) == numpy.array(expected)).all()


def test_geometry_refusals():
    image = smooth(SHAPE)
    with pytest.raises(lumcv.Error) as caught:
        lumcv.undistort(image, (0, 1), (0, 0), 0)
    assert caught.value.argument == "focal"
    with pytest.raises(lumcv.Error) as caught:
        lumcv.sample_line(image, (0, 0), (44, 3))
    assert caught.value.name == "lumStatusOutOfRange"
    with pytest.raises(lumcv.Error):
        lumcv.undistort_map((0, 4), (1, 1), (0, 0), 0)


@pytest.mark.parametrize(
    "source, result",
    [
        ("uint8", "uint8"),
        ("uint8", "float32"),
        ("uint16", "uint16"),
        ("uint16", "float32"),
        ("float32", "float32"),
        ("uint8", "uint16"),
    ],
)
def test_copy_subpix(source, result):
    image = numpy.abs(picture(SHAPE, source)).astype(source)
    u, v = 0.25, 0.75
    wide = image.astype(float)
    expected = (wide[:-1, :-1] * (1 - u) + wide[:-1, 1:] * u) * (1 - v) + (
        wide[1:, :-1] * (1 - u) + wide[1:, 1:] * u
    ) * v
    scale = -4 if (source, result) == ("uint8", "uint16") else 0
    told = lumcv.copy_subpix(strided(image), 5 + u, -1 + v, result, scale)
    assert told.dtype == result
    tolerance = 1 if source == "uint8" and result == "uint8" else 0.51 if result == "uint16" else 0.02
    assert numpy.abs(told / 2.0**-scale - expected).max() <= tolerance
    patch = lumcv.copy_patch(image, (20 + u, 10 + v), (5, 7), result, scale)
    assert numpy.abs(patch.image / 2.0**-scale - expected[8:13, 17:24]).max() <= tolerance
    assert (patch.first, patch.last) == ((0, 0), (6, 4))


def test_patch_at_the_edge_repeats_it():
    image = smooth(SHAPE)
    patch = lumcv.copy_patch(image, (0, 0), (5, 5))
    assert (patch.image == numpy.pad(image, 2, "edge")[:5, :5]).all()
    assert (patch.first, patch.last) == ((2, 2), (4, 4))


def test_patch_refusals():
    with pytest.raises(TypeError, match="these would do: uint16, float32"):
        lumcv.copy_subpix(numpy.zeros((4, 4), "uint16"), 0, 0, "uint8")
    with pytest.raises(ValueError, match="two rows"):
        lumcv.copy_subpix(numpy.zeros((1, 4), "uint8"), 0, 0)
    with pytest.raises(lumcv.Error):
        lumcv.copy_patch(numpy.zeros((4, 4), "uint8"), (0, 0), (0, 3))


@pytest.mark.parametrize("dtype", ["uint8", "uint16", "float32"])
def test_motion_history(dtype):
    history, expected = lumcv.MotionHistory(*SHAPE, duration=2), numpy.zeros(SHAPE, F)
    for time in range(1, 6):
        moved = (picture(SHAPE, "uint8", time) > 200).astype(dtype)
        expected = numpy.where(moved != 0, F(time), numpy.where(expected < time - 2, F(0), expected))
        assert history.update(strided(moved), time) is history.image
        assert (history.image == expected).all()
    with pytest.raises(ValueError, match="shape"):
        history.update(moved[1:], 9)
    with pytest.raises(lumcv.Error) as caught:
        lumcv.MotionHistory(*SHAPE, duration=-1).update(moved, 1)
    assert caught.value.argument == "duration"


def test_background_model():
    model = lumcv.BackgroundModel(*SHAPE, history=50)
    generator = numpy.random.default_rng(3)
    ground = numpy.stack([smooth(SHAPE, seed=n) for n in range(3)], axis=2)
    for _ in range(30):
        frame = numpy.clip(ground.astype(int) + generator.integers(-2, 3, ground.shape), 0, 255).astype("uint8")
        model.apply(strided(frame))
    frame[5:12, 6:20] = (255, 0, 255)
    mask = model.apply(frame, learning_rate=0)
    assert (mask[5:12, 6:20] == 255).all()
    assert (mask == 255).sum() <= 7 * 14 + 20
    assert numpy.abs(model.background().astype(int) - ground).max() <= 3


def test_background_model_is_that_of_the_raw_layer():
    frames = [picture((*SHAPE, 3), "uint8", n) // 8 + 100 for n in range(6)]
    model = lumcv.BackgroundModel(*SHAPE, mixtures=3, shadow_value=50)
    region = size(frames[0])
    state = ffi.cast("LumFGMMState*", memory := asked("lumiFGMMGetBufferSize_8u_C3R", region, 3))
    parameters = ffi.new("LumFGMMParams*")
    parameters.history, parameters.mixtures, parameters.varInit, parameters.varMin, parameters.varMax = (
        500,
        3,
        15,
        4,
        75,
    )
    parameters.matchBackground, parameters.backgroundRatio, parameters.matchGenerate = 16, 0.9, 9
    parameters.complexityPrior, parameters.shadowValue, parameters.shadowEnabled, parameters.shadowRatio = (
        0.05,
        50,
        1,
        0.5,
    )
    ok(raw.lumiFGMMInit_8u_C3R(region, 3, parameters, state))
    expected = numpy.empty(SHAPE, "uint8")
    for frame in frames:
        ok(raw.lumiFGMMForeground_8u_C3R(*plane(frame), *plane(expected), region, state, ffi.NULL, -1.0))
        assert (model.apply(frame) == expected).all()
    background = numpy.empty((*SHAPE, 3), "uint8")
    ok(raw.lumiFGMMBackground_8u_C3R(*plane(background), region, state))
    assert (model.background() == background).all() and memory is not None


def test_background_refusals():
    with pytest.raises(lumcv.Error) as caught:
        lumcv.BackgroundModel(4, 4, mixtures=0)
    assert caught.value.argument == "mixtures"
    model = lumcv.BackgroundModel(4, 4)
    with pytest.raises(TypeError, match="uint8 with 3 channels"):
        model.apply(numpy.zeros((4, 4), "uint8"))
    with pytest.raises(ValueError, match="4 x 4 pixels, not 5 x 4"):
        model.apply(numpy.zeros((5, 4, 3), "uint8"))
    with pytest.raises(TypeError):
        lumcv.BackgroundModel(4, 4, colour=1)
