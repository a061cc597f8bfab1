"""Filters and morphology against NumPy."""

import numpy
import pytest
from conftest import padded, picture, strided

import lumcv

SHAPE = (21, 33)
F = numpy.float32
BORDERS = ["replicate", "mirror", "constant"]


@pytest.fixture(params=BORDERS)
def border(request):
    return request.param


def image_of(dtype, channels):
    return strided(picture(SHAPE if channels == 1 else (*SHAPE, channels), dtype))


def windows(array, rows, columns):
    """What lies under each tap: [row of the kernel, column of the kernel, y, x, ...]."""
    height, width = array.shape[0] - rows + 1, array.shape[1] - columns + 1
    return [[array[j : j + height, i : i + width] for i in range(columns)] for j in range(rows)]


def saturated(values, dtype):
    kind = numpy.dtype(dtype)
    if kind.kind == "f":
        return values.astype(kind)
    limits = numpy.iinfo(kind)
    return numpy.clip(numpy.rint(values), limits.min, limits.max).astype(kind)


@pytest.mark.parametrize("channels", [1, 3])
@pytest.mark.parametrize("dtype", ["uint8", "uint16", "int16", "float32"])
@pytest.mark.parametrize("sigma, taps", [(0.8, 3), (1.5, None), (3, 7)])
def test_gaussian(dtype, channels, sigma, taps, border):
    image = image_of(dtype, channels)
    count = taps or 2 * int(numpy.ceil(3 * sigma)) + 1
    reach = count // 2
    distance = numpy.arange(-reach, reach + 1)
    weights = numpy.exp(-(distance**2) / (2 * sigma**2))
    weights /= weights.sum()
    wide = padded(image.astype(float), border, reach, 40)
    rows = sum(weights[i] * line for i, line in enumerate(windows(wide, 1, count)[0]))
    if border == "constant":
        # Rows outside of a constant border are that constant, which smoothing leaves as it is.
        rows[:reach], rows[-reach:] = 40, 40
    expected = sum(weights[j] * line[0] for j, line in enumerate(windows(rows, count, 1)))
    told = lumcv.gaussian(image, sigma, taps, border=border, border_value=40)
    tolerance = 1e-3 if dtype == "float32" else 1
    assert told.dtype == image.dtype
    assert numpy.abs(told.astype(float) - saturated(expected, "float64")).max() <= tolerance
    spec = lumcv.Gaussian(sigma, dtype, channels, taps)
    assert (spec.apply(image, border, 40) == told).all() and (spec(image, border=border, border_value=40) == told).all()


def test_gaussian_of_a_border_of_each_channel():
    image = numpy.zeros((5, 5, 3), "uint8")
    told = lumcv.gaussian(image, 1, border="constant", border_value=(0, 100, 200))
    assert told[0, 0, 0] == 0 and 0 < told[0, 0, 1] < told[0, 0, 2]
    with pytest.raises(ValueError, match="border_value is one number or 3"):
        lumcv.gaussian(image, 1, border="constant", border_value=(1, 2))
    with pytest.raises(ValueError, match="outside of uint8"):
        lumcv.gaussian(image, 1, border="constant", border_value=256)


@pytest.mark.parametrize(
    "arguments, name, argument",
    [((0,), "lumStatusBadArgument", "sigma"), ((1, 4), "lumStatusBadArgument", "taps"), ((-1, 3), "lumStatusBadArgument", "sigma")],
)
def test_gaussian_errors(arguments, name, argument):
    with pytest.raises(lumcv.Error) as caught:
        lumcv.gaussian(numpy.zeros((4, 4), "uint8"), *arguments)
    assert caught.value.name == name and argument in caught.value.argument.split(", ")


def test_spec_is_for_its_images():
    with pytest.raises(TypeError, match="for uint8 with 1 channels, the image has uint16"):
        lumcv.Gaussian(1.0).apply(numpy.zeros((4, 4), "uint16"))


@pytest.mark.parametrize("channels", [1, 3, 4])
@pytest.mark.parametrize("dtype, result", [("uint8", "uint8"), ("uint8", "int16"), ("int16", "int16"), ("uint16", "uint16"), ("float32", "float32")])
@pytest.mark.parametrize("kernels", [([1, -2, 3], [2, 5, 1]), ([1, 2, 3, 4], [1, 1]), ([1], [1, 0, -1, 2, 1])])
def test_separable(dtype, result, channels, kernels, border):
    image = image_of(dtype, channels)
    if dtype in ("int16", "uint16"):
        image = (image // 64).astype(dtype)
    x, y = (numpy.array(kernel, F) for kernel in kernels)
    divisor = 7 if dtype in ("uint8", "int16") else 1
    margins = ((y.size - 1) // 2, y.size // 2, (x.size - 1) // 2, x.size // 2)
    wide = padded(image.astype(F), border, margins, 3)
    share = F(1) / F(divisor)
    rows = sum(tap * line for tap, line in zip(x, windows(wide, 1, x.size)[0])) * share
    expected = sum(tap * line[0] for tap, line in zip(y, windows(rows, y.size, 1))) * share
    told = lumcv.separable(image, *kernels, divisor=divisor, dtype=result, border=border, border_value=3)
    assert told.dtype == result
    if result == "float32":
        assert numpy.allclose(told, expected, rtol=1e-5, atol=1e-2)
    else:
        limits = numpy.iinfo(result)
        expected = numpy.trunc(numpy.clip(expected.astype(float), limits.min, limits.max))
        # A sum within a rounding of a whole number may be truncated to either side.
        assert (numpy.abs(told - expected) <= 1).all() and (told == expected).mean() > 0.9


def test_separable_refusals():
    image = numpy.zeros((5, 5), "uint8")
    with pytest.raises(TypeError, match="whole numbers"):
        lumcv.separable(image, [0.5], [1])
    with pytest.raises(TypeError, match="these would do: uint8, int16 from uint8"):
        lumcv.separable(image, [1], [1], dtype="float32")
    with pytest.raises(lumcv.Error) as caught:
        lumcv.separable(image, [1], [1], divisor=0)
    assert (caught.value.name, caught.value.argument) == ("lumStatusDivisorError", "divisor")
    with pytest.raises(ValueError, match="divided beforehand"):
        lumcv.separable(image.astype("float32"), [1], [1], divisor=2)
    with pytest.raises(ValueError, match="one dimension"):
        lumcv.separable(image, [[1]], [1])
    with pytest.raises(TypeError, match="these would do"):
        lumcv.separable(numpy.zeros((5, 5, 2), "uint8"), [1], [1])


def correlated(image, kernel, border, value):
    kernel = numpy.asarray(kernel)
    wide = padded(image.astype(numpy.float64), border, (kernel.shape[0] // 2, kernel.shape[0] // 2, kernel.shape[1] // 2, kernel.shape[1] // 2), value)
    lines = windows(wide, *kernel.shape)
    return sum(kernel[j, i] * lines[j][i] for j in range(kernel.shape[0]) for i in range(kernel.shape[1]))


def derivative(taps, order):
    kernel = numpy.array([1.0])
    for step in [[1, 1]] * (taps - order - 1) + [[-1, 1]] * order:
        kernel = numpy.convolve(kernel, step)
    return kernel


@pytest.mark.parametrize("dtype", ["uint8", "float32"])
@pytest.mark.parametrize("size, dx, dy", [(3, 1, 0), (3, 0, 1), (3, 1, 1), (5, 1, 1), (5, 2, 0), (5, 0, 2), (7, 1, 0)])
def test_sobel(dtype, size, dx, dy, border):
    image = image_of(dtype, 1)
    told = lumcv.sobel(image, dx, dy, size, border=border, border_value=9)
    kernel = numpy.outer(derivative(size, dy), derivative(size, dx))
    expected = correlated(image, kernel, border, 9)
    assert told.dtype == ("int16" if dtype == "uint8" else dtype)
    assert numpy.allclose(told, saturated(expected, told.dtype) if dtype == "uint8" else expected, rtol=1e-4, atol=1e-2)


@pytest.mark.parametrize("taps, order, kernel", [(3, 0, [1, 2, 1]), (3, 1, [-1, 0, 1]), (5, 2, [1, 0, -2, 0, 1]), (1, 0, [1])])
@pytest.mark.parametrize("dtype", ["int16", "float32"])
def test_sobel_kernel(taps, order, kernel, dtype):
    assert (lumcv.sobel_kernel(taps, order, dtype) == kernel).all()
    assert (lumcv.sobel_kernel(taps, order, dtype, negative=True) == -numpy.array(kernel)).all()


def test_sobel_errors():
    with pytest.raises(lumcv.Error, match="taps"):
        lumcv.sobel(numpy.zeros((4, 4), "uint8"), size=4)
    with pytest.raises(TypeError, match="these would do: uint8, float32"):
        lumcv.sobel(numpy.zeros((4, 4), "uint16"))
    with pytest.raises(TypeError, match="these would do: int16, float32"):
        lumcv.sobel_kernel(3, 1, "uint8")


@pytest.mark.parametrize("dtype", ["uint8", "float32"])
@pytest.mark.parametrize("size", [3, 5])
def test_laplacian_and_lowpass(dtype, size, border):
    image = image_of(dtype, 1)
    smooth, second = [1, 4, 6, 4, 1], [1, 0, -2, 0, 1]
    kernel = [[2, 0, 2], [0, -8, 0], [2, 0, 2]] if size == 3 else numpy.outer(second, smooth) + numpy.outer(smooth, second)
    told = lumcv.laplacian(image, size, border=border, border_value=9)
    assert numpy.allclose(told, correlated(image, kernel, border, 9), rtol=1e-4, atol=1e-2)
    told = lumcv.lowpass(image, size, border=border, border_value=9)
    total = correlated(image, numpy.ones((size, size)), border, 9)
    if dtype == "uint8":
        whole = total.astype(numpy.int64)
        assert (told == (((whole + 5) * 7280) >> 16 if size == 3 else (whole * 2622) >> 16)).all()
    else:
        assert numpy.allclose(told, total / size**2, rtol=1e-4, atol=1e-3)


@pytest.mark.parametrize("dtype", ["uint8", "uint16", "float32"])
def test_gradient_to_gray(dtype):
    image = numpy.abs(image_of(dtype, 3)).astype(dtype)
    assert (lumcv.gradient_to_gray(image, "inf") == image.max(axis=2)).all()
    assert numpy.abs(lumcv.gradient_to_gray(image, "l1") - image.astype(float).mean(axis=2)).max() <= (1 if dtype != "float32" else 1e-3)
    root = numpy.sqrt((image.astype(float) ** 2).mean(axis=2))
    assert numpy.abs(lumcv.gradient_to_gray(image) - root).max() <= (0.51 if dtype != "float32" else 1e-3)
    with pytest.raises(ValueError, match="norm is"):
        lumcv.gradient_to_gray(image, "max")


MASKS = {
    "full": (3, 5),
    "even": (2, 4),
    "cross": numpy.array([[0, 1, 0], [1, 1, 1], [0, 1, 0]]),
    "lopsided": numpy.array([[1, 0, 0], [0, 0, 1], [1, 1, 0], [0, 0, 0], [0, 1, 1]]),
}
TYPES = [("uint8", 1), ("uint8", 3), ("uint8", 4), ("uint16", 1), ("int16", 1), ("float32", 1), ("float32", 3), ("float32", 4)]


def cells_of(mask):
    cells = numpy.ones(mask, int) if isinstance(mask, tuple) else mask
    height, width = cells.shape
    return numpy.pad(cells, ((1 - height % 2, 0), (1 - width % 2, 0)))


def ranked(image, cells, border, value, largest):
    limits = numpy.finfo(image.dtype) if image.dtype.kind == "f" else numpy.iinfo(image.dtype)
    rows, columns = cells.shape[0] // 2, cells.shape[1] // 2
    if border == "default":
        border, value = "constant", limits.min if largest else limits.max
    wide = padded(image, border, (rows, rows, columns, columns), value)
    lines = windows(wide, *cells.shape)
    chosen = [lines[j][i] for j, i in zip(*numpy.nonzero(cells))]
    return (numpy.max if largest else numpy.min)(chosen, axis=0)


@pytest.mark.parametrize("dtype, channels", TYPES)
@pytest.mark.parametrize("mask", MASKS)
@pytest.mark.parametrize("border", [*BORDERS, "default"])
def test_morphology(dtype, channels, mask, border):
    image = image_of(dtype, channels)
    cells, given = cells_of(MASKS[mask]), MASKS[mask]
    word = {"border": border, "border_value": 50}
    dilated, eroded = (ranked(image, cells, border, 50, largest) for largest in (True, False))
    assert (lumcv.dilate(image, given, **word) == dilated).all()
    assert (lumcv.erode(image, given, **word) == eroded).all()
    back = cells[::-1, ::-1]
    opened = ranked(eroded, back, border, 50, True)
    closed = ranked(dilated, back, border, 50, False)
    assert (lumcv.morph_open(image, given, **word) == opened).all()
    assert (lumcv.morph_close(image, given, **word) == closed).all()
    exact = numpy.float32 if dtype == "float32" else numpy.int64

    def difference(a, b, keep=False):
        values = a.astype(exact) - b.astype(exact)
        if dtype == "float32":
            return values if keep else numpy.maximum(values, 0)
        limits = numpy.iinfo(dtype)
        return numpy.clip(values, limits.min if keep else 0, limits.max)

    assert (lumcv.morph_tophat(image, given, **word) == difference(image, opened)).all()
    assert (lumcv.morph_blackhat(image, given, **word) == difference(closed, image)).all()
    keep = {**word, "keep_negative": True}
    assert (lumcv.morph_tophat(image, given, **keep) == difference(image, opened, True)).all()
    gradient = difference(dilated, ranked(image, back, border, 50, False), True)
    if dtype != "int16":
        assert (lumcv.morph_gradient(image, given, **word) == gradient).all()
    assert (lumcv.morph_gradient(image, given, **keep) == gradient).all()


def test_opening_works_in_place():
    image = picture(SHAPE, "uint8")
    expected = lumcv.morph_open(image, 3)
    assert (lumcv.morph_open(image, 3, out=image) == expected).all()


def test_element_is_one_for_equal_masks():
    image = picture(SHAPE, "uint8")
    element = lumcv.StructuringElement(5)
    assert (lumcv.dilate(image, element) == lumcv.dilate(image, 5)).all()
    assert (lumcv.dilate(image, numpy.ones((5, 5), bool)) == lumcv.dilate(image, (5, 5))).all()
    with pytest.raises(ValueError, match="two dimensions"):
        lumcv.StructuringElement(numpy.ones(3))
    with pytest.raises(TypeError, match="these would do"):
        lumcv.dilate(picture(SHAPE, "int32"))


@pytest.mark.parametrize("dtype", ["uint8", "float32"])
@pytest.mark.parametrize("anchor", [None, (0, 2)])
def test_grey_weighted_morphology(dtype, anchor):
    image = image_of(dtype, 1)
    weights = numpy.array([[1, -20, 3], [4, 0, -6], [7, 8, 30]])
    y, x = anchor or (1, 1)
    wide = padded(image.astype(numpy.int64 if dtype == "uint8" else F), "replicate", (y, 2 - y, x, 2 - x))
    lines = windows(wide, 3, 3)
    sums = [lines[j][i] + weights[j, i].astype(wide.dtype) for j in range(3) for i in range(3)]
    limit = (0, 255) if dtype == "uint8" else (-numpy.inf, numpy.inf)
    assert (lumcv.gray_dilate(image, weights, anchor) == numpy.clip(numpy.max(sums, axis=0), *limit)).all()
    assert (lumcv.gray_erode(image, weights, anchor) == numpy.clip(numpy.min(sums, axis=0), *limit)).all()
    with pytest.raises(lumcv.Error) as caught:
        lumcv.gray_dilate(image, weights, (3, 0))
    assert (caught.value.name, caught.value.argument) == ("lumStatusAnchorError", "anchor")


@pytest.mark.parametrize("dtype", ["uint8", "uint16", "float32", "float64"])
@pytest.mark.parametrize("kind", ["dilate", "erode"])
@pytest.mark.parametrize("connectivity", [4, 8])
def test_reconstruction(dtype, kind, connectivity):
    mask, marker = picture((9, 11), dtype), picture((9, 11), dtype, 2)
    bound, grow = (numpy.minimum, True) if kind == "dilate" else (numpy.maximum, False)
    expected = bound(marker, mask)
    cells = numpy.ones((3, 3), int) if connectivity == 8 else numpy.array([[0, 1, 0], [1, 1, 1], [0, 1, 0]])
    while True:
        grown = bound(ranked(expected, cells, "replicate", 0, grow), mask)
        if (grown == expected).all():
            break
        expected = grown
    told = lumcv.morph_reconstruct(marker, mask, kind, connectivity)
    assert (told == expected).all()
    assert lumcv.morph_reconstruct(marker, mask, kind, connectivity, out=marker) is marker
    assert (marker == expected).all()


def test_reconstruction_refusals():
    image = picture(SHAPE, "uint8")
    with pytest.raises(ValueError, match="connectivity is 4 or 8"):
        lumcv.morph_reconstruct(image, image, connectivity=6)
    with pytest.raises(ValueError, match="kind is"):
        lumcv.morph_reconstruct(image, image, "open")
    with pytest.raises(TypeError, match="mask has elements"):
        lumcv.morph_reconstruct(image, image.astype("uint16"))


def test_region_reads_its_surroundings():
    image = picture(SHAPE, "uint8")
    whole = lumcv.gaussian(image, 1.0)
    region = lumcv.Region(image, 4, 5, 8, 9)
    assert (lumcv.gaussian(region, 1.0) == whole[4:12, 5:14]).all()
    assert (lumcv.gaussian(image[4:12, 5:14], 1.0, border=region) == whole[4:12, 5:14]).all()
    edge = lumcv.Region(image, 0, 5, 8, 9)
    assert (lumcv.gaussian(edge, 1.0, border="mirror") == lumcv.gaussian(image, 1.0, border="mirror")[:8, 5:14]).all()


def test_region_refusals():
    image = picture(SHAPE, "uint8")
    with pytest.raises(ValueError, match=r"reads 3 rows above the region, of which the array has 2"):
        lumcv.gaussian(lumcv.Region(image, 2, 5, 8, 9), 1.0)
    with pytest.raises(ValueError, match="another place"):
        lumcv.gaussian(image[4:12, 5:14], 1.0, border=lumcv.Region(image, 4, 6, 8, 9))
    with pytest.raises(ValueError, match="does not lie in an array of 21 x 33"):
        lumcv.Region(image, 20, 0, 2, 2)
    with pytest.raises(ValueError, match="a region already"):
        lumcv.gaussian(lumcv.Region(image, 4, 5, 8, 9), 1.0, border=lumcv.Region(image, 4, 5, 8, 9))
    with pytest.raises(TypeError, match="a part of a numpy.ndarray"):
        lumcv.Region([[1]], 0, 0, 1, 1)
