"""How arrays are passed: which views, which errors, and that nothing is copied."""

import importlib
import pkgutil
import re

import numpy
import pytest
from conftest import ROOT, picture, strided

import lumcv
from lumcv import _array, _members, families, raw
from lumcv.families import difference


def address(array):
    return array.__array_interface__["data"][0]


def pointer_address(pointer):
    return int(raw.ffi.cast("uintptr_t", pointer))


VIEWS = {
    "contiguous": lambda a: a,
    "columns": lambda a: a[:, 3:17],
    "rows": lambda a: a[2:9],
    "inner": lambda a: a[2:9, 5:11],
    "everySecondRow": lambda a: a[::2],
    "oneRow": lambda a: a[4:5, 2:9],
    "oneColumn": lambda a: a[:, 6:7],
    "onePixel": lambda a: a[3:4, 5:6],
    "fortranOfOnePixel": lambda a: numpy.asfortranarray(a[:1, :1]),
}


@pytest.mark.parametrize("name", VIEWS)
@pytest.mark.parametrize("channels", [1, 3])
def test_view_is_passed_in_place(name, channels, monkeypatch):
    whole = picture((12, 20) if channels == 1 else (12, 20, 3), "uint8")
    view = VIEWS[name](whole)
    seen = []
    member = difference._constant[numpy.dtype("uint8"), 1] if channels == 1 else None
    pointer, step, height, width, found = _array.source(view)
    assert (pointer_address(pointer), height, width, found) == (address(view), *view.shape[:2], channels)
    assert height == 1 or step == view.strides[0]
    if channels == 1:

        def spy(src, src_step, dst, dst_step, size, value):
            seen.append((pointer_address(src), pointer_address(dst)))
            return member.call(src, src_step, dst, dst_step, size, value)

        monkeypatch.setitem(difference._constant, (numpy.dtype("uint8"), 1), member._replace(call=spy))
        out = strided(numpy.zeros(view.shape, "uint8"))
        result = lumcv.absdiff(view, 7, out=out)
        assert result is out
        assert seen == [(address(view), address(out))]
        assert (out == numpy.abs(view.astype(int) - 7)).all()


@pytest.mark.parametrize(
    "view",
    [
        lambda a: a[:, ::2],
        lambda a: a[::-1],
        lambda a: a[:, ::-1],
        lambda a: a.T,
        lambda a: numpy.broadcast_to(a[:1], a.shape),
        lambda a: numpy.stack([a, a, a]).transpose(1, 2, 0),
    ],
)
def test_view_that_is_not_in_order_names_the_remedy(view):
    with pytest.raises(ValueError, match=r"numpy\.ascontiguousarray\(image\)"):
        lumcv.absdiff(view(picture((6, 8), "uint8")), 3)


def test_result_is_written_into_out_with_a_gap_between_rows():
    image = picture((6, 8), "float32")
    larger = numpy.full((10, 12), 7, numpy.float32)
    lumcv.gaussian(image, 1.0, out=larger[2:8, 1:9])
    assert (larger[2:8, 1:9] == lumcv.gaussian(image, 1.0)).all()
    larger[2:8, 1:9] = 7
    assert (larger == 7).all()


def test_memory_map_that_is_read_only_is_a_source(tmp_path):
    numpy.save(tmp_path / "a.npy", picture((6, 8), "uint8"))
    mapped = numpy.load(tmp_path / "a.npy", mmap_mode="r")
    assert (lumcv.absdiff(mapped, 0) == mapped).all()
    with pytest.raises(ValueError, match="out is read-only"):
        lumcv.absdiff(mapped, 0, out=mapped)
    with pytest.raises(ValueError, match="out is read-only"):
        lumcv.absdiff(numpy.array(mapped)[:, :4], 0, out=mapped[:, :4])


@pytest.mark.parametrize(
    "call, error, words",
    [
        (lambda: lumcv.absdiff([[1]], 1), TypeError, "numpy.ndarray"),
        (lambda: lumcv.absdiff(numpy.zeros(4, "uint8"), 1), ValueError, "1 dimensions"),
        (lambda: lumcv.absdiff(numpy.zeros((2, 2), "complex64"), 1), TypeError, "complex64"),
        (lambda: lumcv.absdiff(numpy.zeros((2, 2), "int32"), 1), TypeError, "uint8 with 1 channel, uint16 with 1"),
        (lambda: lumcv.absdiff(numpy.zeros((2, 2), ">u2"), 1), TypeError, ">u2"),
        (lambda: lumcv.absdiff(numpy.zeros((2, 2), "uint8"), 1.5), ValueError, "whole number"),
        (lambda: lumcv.absdiff(numpy.zeros((2, 2), "uint8"), numpy.zeros((2, 3), "uint8")), ValueError, "shape"),
        (lambda: lumcv.absdiff(numpy.zeros((2, 2), "uint8"), numpy.zeros((2, 2), "uint16")), TypeError, "other"),
        (lambda: lumcv.absdiff(numpy.zeros((2, 2), "uint8"), 1, out=numpy.zeros((2, 3), "uint8")), ValueError, "out"),
        (lambda: lumcv.absdiff(numpy.zeros((2, 2), "uint8"), 1, out=numpy.zeros((2, 2), "int8")), TypeError, "out"),
        (lambda: lumcv.absdiff(numpy.zeros((2, 2), "uint8"), 1, out=3), TypeError, "out"),
        (lambda: lumcv.gaussian(numpy.zeros((2, 2), "uint8"), 1, border="wrap"), ValueError, '"replicate"'),
        (lambda: lumcv.lowpass(numpy.zeros((2, 2), "uint8"), 4), ValueError, "3 or 5"),
        (lambda: lumcv.mean(numpy.zeros((2, 2), "uint8"), numpy.zeros((2, 3), "uint8")), ValueError, "mask"),
        (lambda: lumcv.mean(numpy.zeros((2, 2), "uint8"), numpy.zeros((2, 2), "int16")), TypeError, "mask"),
    ],
)
def test_what_cannot_be_passed_is_refused(call, error, words):
    with pytest.raises(error, match=words):
        call()


def tables():
    for module in pkgutil.iter_modules(families.__path__):
        loaded = importlib.import_module(f"lumcv.families.{module.name}")
        for value in vars(loaded).values():
            stack = [value]
            while stack:
                each = stack.pop()
                if isinstance(each, _members.Members):
                    yield each
                elif isinstance(each, dict):
                    stack += each.values()
                elif isinstance(each, tuple):
                    stack += each


def test_every_table_of_members_has_members_and_lists_them():
    found = list(tables())
    assert len(found) > 90
    for table in found:
        assert table.names(), table.pattern
        with pytest.raises(TypeError, match="these would do"):
            table[numpy.dtype("int8"), 7]


#: Operations in a second form, whose results another function on arrays gives.
OTHER_FORMS = {
    "lumcvGetLibVersion": "raw.lumcvGetLibVersion",
    "lumiApplyMixedHaarClassifier": "HaarStage, upright or tilted",
    "lumiDilateBorder": "dilate",
    "lumiErodeBorder": "erode",
    "lumiMorphOpenBorder": "morph_open",
    "lumiMorphCloseBorder": "morph_close",
    "lumiMorphTophatBorder": "morph_tophat",
    "lumiMorphBlackhatBorder": "morph_blackhat",
    "lumiMorphGradientBorder": "morph_gradient",
    "lumiFilterGaussianBorder": "gaussian",
    "lumiEigenValsVecs": "eigen_vectors",
    "lumiMinEigenVal": "min_eigen",
    "lumiTiltHaarFeatures": "HaarStage, tilted",
}

#: Families of functions that the array layer does not call, with the reason.
ELSEWHERE = {
    "1u": "bit images have no element type",
    "Pipeline": "stages over row pointers",
    "GetSize|GetSpecSize|GetBufferSize|Init": "sizes and objects",
}


def test_every_operation_has_a_function_on_arrays():
    source = "".join(path.read_text() for path in (ROOT / "python/lumcv/families").glob("*.py"))
    called = {name for table in tables() for name in table.names().values()} | set(re.findall(r"\blumi\w+", source))
    called |= {name for name in raw.names if re.match(r"lumi(DistanceTransform|GenSobelKernel|GetDistanceTransformMask)_", name)}
    called |= {name.removesuffix("_L") for name in called} | {name + "_L" for name in called}
    operations = {re.sub(r"_(1u|8u|16u|16s|32s|32f|64f).*|_L$", "", name) for name in called}
    missing = set()
    for name in raw.names:
        operation = re.sub(r"_(1u|8u|16u|16s|32s|32f|64f).*|_L$", "", name)
        if any(re.search(pattern, name) for pattern in ELSEWHERE) or operation in operations:
            continue
        missing.add(operation)
    assert missing == set(OTHER_FORMS), missing ^ set(OTHER_FORMS)
