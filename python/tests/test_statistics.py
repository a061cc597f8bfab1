"""Differences, accumulators, means, norms and integral images against NumPy."""

import numpy
import pytest
from conftest import picture, strided

import lumcv

SHAPE = (23, 37)
F = numpy.float32


@pytest.fixture(params=["uint8", "uint16", "float32"])
def image(request):
    return strided(picture(SHAPE, request.param))


@pytest.fixture
def other(image):
    return picture(SHAPE, image.dtype, 2)


@pytest.fixture(params=[None, "bool", "uint8"])
def mask(request):
    return None if request.param is None else (picture(SHAPE, "uint8", 3) > 90).astype(request.param)


def wide(array):
    return array.astype(numpy.float32 if array.dtype == F else numpy.int64)


def test_absdiff(image, other):
    assert (lumcv.absdiff(image, other) == numpy.abs(wide(image) - wide(other))).all()
    assert (lumcv.absdiff(image, 17) == numpy.abs(wide(image) - F(17) if image.dtype == F else wide(image) - 17)).all()


def test_absdiff_of_three_channels():
    a, b = picture((9, 11, 3), "uint8"), picture((9, 11, 3), "uint8", 2)
    assert (lumcv.absdiff(a, b) == numpy.abs(a.astype(int) - b)).all()


def test_absdiff_clamps_a_number_beyond_the_type():
    assert lumcv.absdiff(numpy.zeros((1, 1), "uint8"), 300)[0, 0] == 255
    assert lumcv.absdiff(numpy.full((1, 1), 9, "uint8"), -(10**12))[0, 0] == 9


def test_absdiff_in_place(image, other):
    expected = lumcv.absdiff(image, other)
    assert lumcv.absdiff(image, other, out=image) is image
    assert (image == expected).all()


def masked(new, old, mask):
    return new if mask is None else numpy.where(mask != 0, new, old)


def test_accumulators(image, other, mask):
    total = picture(SHAPE, "float32", 4)
    a, b = image.astype(F), other.astype(F)
    expected = {
        "square": masked(total + a * a, total, mask),
        "product": masked(total + a * b, total, mask),
        "weighted": masked(total + (a - total) * F(0.25), total, mask),
        "sum": masked(total + a, total, mask),
    }
    assert (lumcv.accumulate_square(image, total.copy(), mask) == expected["square"]).all()
    assert (lumcv.accumulate_product(image, other, total.copy(), mask) == expected["product"]).all()
    assert (lumcv.accumulate_weighted(image, total.copy(), 0.25, mask) == expected["weighted"]).all()
    if image.dtype == F and mask is None:
        with pytest.raises(TypeError, match="these would do: uint8 with 1 channel, uint16"):
            lumcv.accumulate(image, total)
    else:
        given = total.copy()
        assert lumcv.accumulate(image, given, mask) is given
        assert (given == expected["sum"]).all()


def test_accumulator_of_another_type_is_refused(image):
    with pytest.raises(TypeError, match="total has elements of float64"):
        lumcv.accumulate_square(image, numpy.zeros(SHAPE))


def test_add_weighted():
    a, b = picture(SHAPE, "float32"), picture(SHAPE, "float32", 2)
    assert (lumcv.add_weighted(a, b, 0.3) == b + (a - b) * F(0.3)).all()


def selected(image, mask):
    return wide(image).astype(numpy.float64)[numpy.ones(SHAPE, bool) if mask is None else mask != 0]


def close(result, expected, dtype):
    # Sums of integers are exact; those of floats add up in single precision within a row.
    return result == pytest.approx(expected, rel=1e-12 if dtype != F else 1e-4, abs=1e-12 if dtype != F else 1e-3)


def test_mean_and_deviation(image, mask):
    pixels = selected(image, mask)
    assert close(lumcv.mean(image, mask), pixels.mean(), image.dtype)
    result = lumcv.mean_stddev(image, mask)
    assert close(result.mean, pixels.mean(), image.dtype) and close(result.stddev, pixels.std(), image.dtype)


def test_mean_of_channels(image, mask):
    colour = numpy.stack([image, image // 2 if image.dtype != F else image / 2, image], axis=2)
    told = lumcv.mean(colour, mask)
    assert told == tuple(lumcv.mean(colour, mask, channel) for channel in range(3))
    assert close(told[1], selected(colour[:, :, 1], mask).mean(), image.dtype)
    assert lumcv.mean_stddev(colour, mask)[2] == lumcv.mean_stddev(colour, mask, 2)


def test_channel_that_is_not_there():
    with pytest.raises(lumcv.Error) as caught:
        lumcv.mean(picture((4, 4, 3), "uint8"), channel=3)
    assert (caught.value.name, caught.value.argument) == ("lumStatusChannelOfInterestError", "channel")


def test_extremes(image, mask):
    told = lumcv.min_max(image, mask)
    chosen = numpy.ones(SHAPE, bool) if mask is None else mask != 0
    values = wide(image).astype(float)
    low, high = numpy.where(chosen, values, numpy.inf), numpy.where(chosen, values, -numpy.inf)
    assert (told.min, told.max) == (low.min(), high.max())
    assert told.min_at == numpy.unravel_index(low.argmin(), SHAPE)
    assert told.max_at == numpy.unravel_index(high.argmax(), SHAPE)
    colour = numpy.stack([image] * 3, axis=2)
    assert lumcv.min_max(colour, mask) == (told,) * 3


def test_extremes_of_an_empty_mask_warn():
    with pytest.warns(lumcv.StatusWarning, match="lumStatusEmptyMask: .*mask selects no pixel") as caught:
        told = lumcv.min_max(picture(SHAPE, "uint8"), numpy.zeros(SHAPE, bool))
    assert told == (0, 0, (0, 0), (0, 0))
    assert caught[0].filename == __file__


@pytest.mark.parametrize(
    "kind, formula", [("inf", numpy.max), ("l1", numpy.sum), ("l2", lambda a: numpy.sqrt((a * a).sum()))]
)
def test_norms(image, other, mask, kind, formula):
    a, b = selected(image, mask), selected(other, mask)
    assert close(lumcv.norm(image, kind=kind, mask=mask), formula(numpy.abs(a)), image.dtype)
    assert close(lumcv.norm(image, other, kind, mask), formula(numpy.abs(a - b)), image.dtype)
    expected = formula(numpy.abs(a - b)) / formula(numpy.abs(b))
    assert close(lumcv.norm(image, other, kind, mask, relative=True), expected, image.dtype)
    colour = numpy.stack([image, other, image], axis=2)
    assert lumcv.norm(colour, kind=kind, mask=mask)[1] == lumcv.norm(colour, kind=kind, mask=mask, channel=1)
    assert lumcv.norm(colour, kind=kind, mask=mask, channel=1) == lumcv.norm(other, kind=kind, mask=mask)
    swapped = numpy.stack([other, image, image], axis=2)
    for relative in (False, True):
        told = lumcv.norm(colour, swapped, kind, mask, relative=relative)
        alone = lumcv.norm(image, other, kind, mask, relative=relative), lumcv.norm(
            other, image, kind, mask, None, relative
        )
        assert told == (*alone, 0)
        assert all(lumcv.norm(colour, swapped, kind, mask, c, relative) == told[c] for c in range(3))


def test_norm_relative_to_nothing_warns():
    with pytest.warns(lumcv.StatusWarning, match="lumStatusZeroDenominator") as caught:
        told = lumcv.norm(picture(SHAPE, "uint8"), numpy.zeros(SHAPE, "uint8"), relative=True)
    assert told == numpy.inf and caught[0].filename == __file__


def test_norm_refuses_other_words():
    with pytest.raises(ValueError, match='"l2", "l1" or "inf"'):
        lumcv.norm(picture(SHAPE, "uint8"), kind="l3")
    with pytest.raises(ValueError, match="needs another image"):
        lumcv.norm(picture(SHAPE, "uint8"), relative=True)


def table(values):
    return numpy.pad(values.cumsum(0).cumsum(1), ((1, 0), (1, 0)))


@pytest.mark.parametrize("operation", [lumcv.integral, lumcv.tilted_integral])
def test_integrals_into_given_arrays(operation):
    image = picture(SHAPE, "uint8")
    sums, second = operation(image, squares="float64")
    wide = numpy.zeros((sums.shape[0], sums.shape[1] + 3), "int32")
    given = wide[:, 1:-2], numpy.zeros_like(second)
    told = operation(image, squares="float64", out=given)
    assert told[0] is given[0] and told[1] is given[1]
    assert (given[0] == sums).all() and (given[1] == second).all() and not wide[:, (0, -2, -1)].any()
    assert operation(image, out=given[0]) is given[0]
    with pytest.raises(ValueError, match="a tuple of two"):
        operation(image, squares="float64", out=given[0])
    with pytest.raises(ValueError, match="the result has"):
        operation(image, out=numpy.zeros(SHAPE, "int32"))


@pytest.mark.parametrize("dtype", ["int32", "float32"])
def test_integral_of_bytes(dtype):
    image = strided(picture(SHAPE, "uint8"))
    assert (lumcv.integral(image, dtype) == table(image.astype(numpy.int64))).all()
    assert (lumcv.integral(image, dtype, value=7) == table(image.astype(numpy.int64)) + 7).all()


def test_integral_of_floats():
    image = numpy.round(picture(SHAPE, "float32"))
    sums = lumcv.integral(image)
    assert sums.dtype == F and (sums == table(image.astype(float))).all()
    with pytest.raises(ValueError, match="start with 0"):
        lumcv.integral(image, value=1)


@pytest.mark.parametrize("dtype, squares", [("int32", "int32"), ("int32", "float64"), ("float32", "float64")])
def test_integral_with_squares(dtype, squares):
    image = picture(SHAPE, "uint8")
    sums, second = lumcv.integral(image, dtype, squares, value=3, squares_value=5)
    assert (sums.dtype, second.dtype) == (dtype, squares)
    wide_image = image.astype(numpy.int64)
    assert (sums == table(wide_image) + 3).all() and (second == table(wide_image * wide_image) + 5).all()
    assert (lumcv.tilted_integral(image, dtype, squares, 3, 5)[0] == lumcv.tilted_integral(image, dtype, value=3)).all()


def test_integral_of_other_types_is_refused():
    with pytest.raises(TypeError, match="these would do: int32 alone"):
        lumcv.integral(picture(SHAPE, "uint8"), "float64")
    with pytest.raises(TypeError, match="these would do: uint8"):
        lumcv.integral(picture(SHAPE, "uint16"))


@pytest.mark.parametrize("dtype", ["int32", "float32"])
def test_tilted_integral(dtype):
    image = picture((7, 9), "uint8")
    sums = lumcv.tilted_integral(image, dtype)
    height, width = image.shape
    expected = numpy.zeros((height + 2, width + 2), numpy.int64)
    for y in range(2, height + 2):
        above, before = expected[y - 2], expected[y - 1]
        row = image[y - 2].astype(numpy.int64)
        expected[y, 0] = before[1]
        for x in range(1, width):
            expected[y, x] = row[x - 1] + row[x] + before[x - 1] - (above[x] - before[x + 1])
        expected[y, width] = row[width - 1] + before[width - 1] + (before[width + 1] - above[width])
        expected[y, width + 1] = before[width]
    assert (sums == expected).all()


@pytest.mark.parametrize("dtype, squares", [("int32", "int32"), ("int32", "float64"), ("float32", "float64")])
def test_deviation_of_rectangles(dtype, squares):
    image = picture((14, 17), "uint8")
    sums, second = lumcv.integral(image, dtype, squares)
    told = lumcv.rect_stddev(sums, second, (1, 2, 5, 4))
    assert told.shape == (14 - 2 - 4 + 1, 17 - 1 - 5 + 1)
    expected = [[image[y + 2 : y + 6, x + 1 : x + 6].std() for x in range(told.shape[1])] for y in range(told.shape[0])]
    assert numpy.allclose(told, expected, atol=0.51 if squares == "int32" else 1e-2)
    if squares == "int32":
        scaled = lumcv.rect_stddev(sums, second, (1, 2, 5, 4), scale=-3)
        assert numpy.allclose(scaled / 8, expected, atol=0.07)


@pytest.mark.parametrize("dtype, squares", [("int32", "int32"), ("int32", "float64"), ("float32", "float64")])
def test_deviation_of_tilted_rectangles(dtype, squares):
    image = picture((20, 24), "uint8")
    sums, second = lumcv.tilted_integral(image, dtype, squares)
    x, y, w, h = rect = (8, 1, 3, 4)
    told = lumcv.rect_stddev(sums, second, rect, tilted=True)

    def corners(p, i, j):
        r, c = x + y + j, x - y + i
        a, b, far, d = (p[r, c], p[r + w, c + w], p[r + w + h, c + w - h], p[r + h, c - h])
        return float(a) + float(far) - (float(b) + float(d))

    for j in range(told.shape[0]):
        for i in range(told.shape[1]):
            mean = corners(sums, i, j) / (2 * w * h)
            spread = numpy.sqrt(max(corners(second, i, j) / (2 * w * h) - mean * mean, 0))
            assert abs(told[j, i] - spread) <= (0.51 if squares == "int32" else 2e-2)


def test_rectangles_lie_in_the_image():
    sums, second = lumcv.integral(picture((8, 8), "uint8"), squares="float64")
    for rect in ((0, 0, 9, 1), (-1, 0, 2, 2), (0, 5, 2, 4)):
        with pytest.raises(ValueError, match="does not lie in the image"):
            lumcv.rect_stddev(sums, second, rect)
    with pytest.raises(ValueError, match="does not lie in the image"):
        lumcv.rect_stddev(sums, second, (0, 0, 2, 2), tilted=True)
    with pytest.raises(TypeError, match="these would do"):
        lumcv.rect_stddev(sums, second.astype("float32"), (0, 0, 2, 2))
    with pytest.raises(ValueError, match="shape"):
        lumcv.rect_stddev(sums, second[1:], (0, 0, 2, 2))
