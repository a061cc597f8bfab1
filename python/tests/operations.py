"""The operations that run in parts, with the pictures that they take and the borders that they have."""

from functools import partial

import numpy
from conftest import picture, smooth

import lumcv

SHAPE = (41, 53)
BORDERS = ("replicate", "mirror", "constant")
LOPSIDED = numpy.array([[1, 0, 0, 1, 1], [0, 1, 1, 0, 0], [1, 1, 0, 0, 1]])


def image(dtype, channels=1):
    shape = SHAPE if channels == 1 else (*SHAPE, channels)
    return smooth(SHAPE) if dtype == "smooth" else picture(shape, dtype)


def cases():
    """Name, operation, picture, further arguments."""
    for border in BORDERS:
        word = {"border": border, "border_value": 33}
        for dtype in ("uint8", "uint16", "int16", "float32"):
            for channels in (1, 3):
                operation = partial(lumcv.gaussian, sigma=1.3, **word)
                yield f"gaussian-{border}-{dtype}-{channels}", operation, image(dtype, channels), ()
        spec = lumcv.Gaussian(2.5, "uint8")
        yield f"Gaussian-{border}", partial(spec.apply, **word), image("uint8"), ()
        for dtype in ("uint8", "int16", "uint16", "float32"):
            for channels in (1, 3, 4):
                divisor = 5 if dtype in ("uint8", "int16") else 1
                operation = partial(
                    lumcv.separable, kernel_x=[1, 3, -2, 4], kernel_y=[2, -1, 5, 1, 1, 3], divisor=divisor, **word
                )
                yield f"separable-{border}-{dtype}-{channels}", operation, image(dtype, channels), ()
        for dtype in ("uint8", "float32"):
            for size in (3, 5):
                for dx, dy in ((1, 0), (0, 1), (1, 1), (2, 0)):
                    operation = partial(lumcv.sobel, dx=dx, dy=dy, size=size, **word)
                    yield f"sobel-{border}-{dtype}-{size}-{dx}{dy}", operation, image(dtype), ()
                yield f"laplacian-{border}-{dtype}-{size}", partial(lumcv.laplacian, size=size, **word), image(dtype), ()
                yield f"lowpass-{border}-{dtype}-{size}", partial(lumcv.lowpass, size=size, **word), image(dtype), ()
                yield f"harris-{border}-{dtype}-{size}", partial(lumcv.harris, size=size, window=4, **word), image(dtype), ()
                for window in (3, 5):
                    operation = partial(lumcv.min_eigen, size=size, window=window, **word)
                    yield f"min_eigen-{border}-{dtype}-{size}-{window}", operation, image(dtype), ()
                operation = partial(lumcv.eigen_vectors, size=size, **word)
                yield f"eigen_vectors-{border}-{dtype}-{size}", operation, image(dtype), ()
        if border != "mirror":
            features = (picture(SHAPE, "uint8", 9),)
            operation = partial(lumcv.line_suppression, threshold=40, window=5, **word)
            yield f"line_suppression-{border}", operation, image("smooth"), features
    for border in (*BORDERS, "default"):
        word = {"border": border, "border_value": 33}
        for dtype, channels in (
            *(("uint8", channels) for channels in (1, 3, 4)),
            ("uint16", 1),
            ("int16", 1),
            *(("float32", channels) for channels in (1, 3, 4)),
        ):
            for name in ("dilate", "erode", "morph_open", "morph_close", "morph_tophat", "morph_blackhat", "morph_gradient"):
                for mask_name, mask in (("full", (3, 6)), ("lopsided", LOPSIDED)):
                    if channels > 1 and mask_name == "full":
                        continue
                    operation = partial(getattr(lumcv, name), mask=mask, **word)
                    yield f"{name}-{border}-{dtype}-{channels}-{mask_name}", operation, image(dtype, channels), ()
    for radius, arc in ((1, 5), (3, 9), (9, 27)):
        for suppress in (False, True):
            operation = partial(lumcv.fast_marks, threshold=12, radius=radius, arc=arc, suppress=suppress, bins=8)
            yield f"fast_marks-{radius}-{suppress}", operation, image("smooth"), ()
    for dtype in ("uint8", "uint16", "float32"):
        yield f"absdiff-{dtype}", lumcv.absdiff, image(dtype), (picture(SHAPE, dtype, 5),)
        yield f"gradient_to_gray-{dtype}", lumcv.gradient_to_gray, image(dtype, 3), ()
    yield "absdiff-number", partial(lumcv.absdiff, other=77), image("uint8"), ()
    yield "add_weighted", partial(lumcv.add_weighted, alpha=0.3), image("float32"), (picture(SHAPE, "float32", 5),)


CASES = list(cases())


def same(a, b):
    """Whether two results have the same bits."""
    if isinstance(a, tuple):
        return len(a) == len(b) and all(same(*each) for each in zip(a, b))
    a, b = numpy.ascontiguousarray(a), numpy.ascontiguousarray(b)
    return a.dtype == b.dtype and a.shape == b.shape and a.tobytes() == b.tobytes()
