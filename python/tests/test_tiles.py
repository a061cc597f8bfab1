"""Tiles of arrays and memory maps: the bits of the whole, in bounded memory."""

import functools
import inspect
import resource
import subprocess
import sys

import numpy
import pytest
from conftest import picture, smooth
from operations import CASES, SHAPE, same

import lumcv
import lumcv.tiles
from lumcv import _tiling
from lumcv._tiling import Tiling, part_of


@pytest.mark.parametrize("name, operation, image, others", CASES, ids=[case[0] for case in CASES])
def test_tiles_have_the_bits_of_the_whole(name, operation, image, others):
    whole = operation(image, *others)
    for tile in ((16, 19), (7, 11), (41, 5)):
        assert same(lumcv.tiles.map(operation, image, *others, tile=tile), whole), tile


@pytest.mark.parametrize("tile", [1, 2, (1, 53), (41, 1), (3, 50), 1000])
@pytest.mark.parametrize("border", ["replicate", "mirror", "constant"])
def test_smallest_tiles_have_the_bits_of_the_whole(tile, border):
    image = smooth(SHAPE)
    for operation in (lumcv.gaussian, lumcv.morph_open, lumcv.harris, lumcv.min_eigen):
        keywords = {"sigma": 2} if operation is lumcv.gaussian else {}
        whole = operation(image, border=border, **keywords)
        assert same(lumcv.tiles.map(operation, image, tile=tile, border=border, **keywords), whole)


@pytest.mark.parametrize("shape", [(1, 1), (1, 30), (30, 1), (2, 3), (5, 9)])
def test_pictures_smaller_than_the_reach(shape):
    image = picture(shape, "uint8")
    for border in ("replicate", "mirror", "constant"):
        whole = lumcv.gaussian(image, 3, border=border)
        for tile in (1, 2, 4):
            assert same(lumcv.tiles.map(lumcv.gaussian, image, sigma=3, border=border, tile=tile), whole)


def test_part_reads_exactly_the_reach():
    part = part_of((20, 30, 40, 60), (100, 100), Tiling((1, 2, 3, 4), 0))
    assert part.run == (20, 30, 40, 60)
    assert part.read == (19, 32, 37, 64)


def test_part_at_the_edge_reads_up_to_it():
    part = part_of((0, 30, 2, 60), (100, 100), Tiling((3, 3, 3, 3), 0))
    assert part.run == (0, 30, 0, 60)
    assert part.read == (0, 33, 0, 63)


def test_threads_give_the_same_bits():
    image = smooth((200, 260))
    whole = lumcv.gaussian(image, 2.0)
    assert same(lumcv.tiles.map(lumcv.Gaussian(2.0), image, tile=31, workers=5), whole)


def test_memory_maps_in_and_out(tmp_path):
    image = smooth((90, 110))
    numpy.save(tmp_path / "in.npy", image)
    source = numpy.load(tmp_path / "in.npy", mmap_mode="r")
    target = numpy.lib.format.open_memmap(tmp_path / "out.npy", "w+", "uint8", image.shape)
    assert lumcv.tiles.map(lumcv.erode, source, mask=5, tile=32, out=target) is target
    target.flush()
    assert same(numpy.load(tmp_path / "out.npy"), lumcv.erode(image, 5))


def test_memory_is_bounded_by_the_tile(tmp_path):
    # 256 MiB of picture in and as much out, by a process that may have 192 MiB of its own data.
    program = f"""
import resource, numpy, lumcv, lumcv.tiles
image = numpy.lib.format.open_memmap({str(tmp_path / "in.npy")!r}, "w+", "uint8", (16384, 16384))
image[5000, 5000] = 200
out = numpy.lib.format.open_memmap({str(tmp_path / "out.npy")!r}, "w+", "uint8", (16384, 16384))
before = int(open("/proc/self/statm").read().split()[5]) * resource.getpagesize()
resource.setrlimit(resource.RLIMIT_DATA, (before + 192 * 2**20,) * 2)
lumcv.tiles.map(lumcv.lowpass, image, tile=1024, workers=2, out=out)
assert out[4999:5002, 4999:5002].min() == 22
"""
    subprocess.run([sys.executable, "-c", program], check=True)
    assert resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime < 120


WHOLE = [
    (lumcv.flood_fill, {"seed": (0, 0), "value": 1}),
    (lumcv.watershed, {"markers": numpy.zeros(SHAPE, "uint8")}),
    (lumcv.segment_gradient, {"markers": numpy.zeros(SHAPE, "uint8")}),
    (lumcv.label, {}),
    (lumcv.mark_speckles, {"value": 0, "size": 1, "difference": 1}),
    (lumcv.distance, {}),
    (lumcv.true_distance, {}),
    (lumcv.fast_marching, {}),
    (lumcv.inpaint, {"mask": numpy.zeros(SHAPE, "uint8")}),
    (lumcv.morph_reconstruct, {"mask": numpy.zeros(SHAPE, "uint8")}),
    (lumcv.undistort, {"focal": (1, 1), "centre": (1, 1), "k1": 0}),
    (lumcv.bound_segments, {"value": 1}),
    (lumcv.gray_dilate, {}),
    (lumcv.gray_erode, {}),
    (lumcv.integral, {}),
    (lumcv.tilted_integral, {}),
    (lumcv.pyramid_down, {}),
    (lumcv.hough_lines, {"threshold": 1}),
    (lumcv.fast_corners, {}),
]


@pytest.mark.parametrize("operation, keywords", WHOLE, ids=[case[0].__name__ for case in WHOLE])
def test_global_operations_are_refused_with_the_reason(operation, keywords):
    with pytest.raises(ValueError, match=f"{operation.__name__} takes a picture as a whole: .{{20}}"):
        lumcv.tiles.map(operation, smooth(SHAPE), **keywords)


def test_every_operation_runs_in_parts_or_says_why_not():
    of_no_picture = {"sobel_kernel", "distance_steps", "pyramid_size_down", "pyramid_size_up"}
    in_place = {name for name in lumcv.__all__ if name.startswith("accumulate")}
    functions = {name for name in lumcv.__all__ if inspect.isfunction(getattr(lumcv, name))}
    for name in functions - of_no_picture - in_place:
        function = getattr(lumcv, name)
        assert (function in _tiling._tilings) != (function in _tiling._reasons), name


def test_what_is_no_operation_is_refused():
    with pytest.raises(TypeError, match="not known to run in parts"):
        lumcv.tiles.map(numpy.median, smooth(SHAPE))
    with pytest.raises(ValueError, match="reduce in lumcv.tiles and lumcv.dask"):
        lumcv.tiles.map(lumcv.mean, smooth(SHAPE))
    with pytest.raises(TypeError, match="border is a word"):
        image = smooth(SHAPE)
        lumcv.tiles.map(lumcv.lowpass, image, border=lumcv.Region(image, 0, 0, 3, 3))
    with pytest.raises(ValueError, match="the picture itself"):
        lumcv.tiles.map(lumcv.lowpass, image, out=image)
    with pytest.raises(ValueError, match="one worker or more"):
        lumcv.tiles.map(lumcv.lowpass, image, workers=0, tile=8)
    with pytest.raises(ValueError, match="one row"):
        lumcv.tiles.map(lumcv.lowpass, image, tile=0)


def test_accumulators_are_changed_in_place():
    image, total = picture(SHAPE, "uint8"), numpy.ones(SHAPE, "float32")
    mask = picture(SHAPE, "uint8", 4) > 99
    expected = lumcv.accumulate(image, total.copy(), mask)
    result = lumcv.tiles.map(lumcv.accumulate, image, total, tile=9, mask=mask)
    assert (total == expected).all() and (result == expected).all()


def reductions():
    for dtype in ("uint8", "uint16", "float32"):
        for channels in (1, 3):
            image = picture(SHAPE if channels == 1 else (*SHAPE, 3), dtype)
            other = picture(image.shape, dtype, 8)
            for mask in (None, picture(SHAPE, "uint8", 3) > 100, numpy.zeros(SHAPE, bool)):
                for channel in (None, 2) if channels == 3 else (None,):
                    keywords = {"mask": mask, "channel": channel}
                    name = f"{dtype}-{channels}-{'all' if mask is None else int(mask.sum())}-{channel}"
                    yield f"mean-{name}", lumcv.mean, image, (), keywords
                    yield f"mean_stddev-{name}", lumcv.mean_stddev, image, (), keywords
                    yield f"min_max-{name}", lumcv.min_max, image, (), keywords
                    for kind in ("l1", "l2", "inf"):
                        named = {**keywords, "kind": kind}
                        yield f"norm-{kind}-{name}", lumcv.norm, image, (), named
                        yield f"norm_diff-{kind}-{name}", lumcv.norm, image, (other,), named
                        yield f"norm_rel-{kind}-{name}", lumcv.norm, image, (other,), {**named, "relative": True}


REDUCTIONS = list(reductions())


def alike(result, expected, exact):
    if isinstance(expected, tuple):
        return len(result) == len(expected) and all(alike(*each, exact) for each in zip(result, expected))
    if numpy.isnan(expected):
        return numpy.isnan(result)
    return result == expected if exact else abs(result - expected) <= 1e-5 * abs(expected)


@pytest.mark.filterwarnings("ignore::lumcv.StatusWarning")
@pytest.mark.parametrize("name, operation, image, others, keywords", REDUCTIONS, ids=[case[0] for case in REDUCTIONS])
def test_reductions_of_tiles(name, operation, image, others, keywords):
    whole = operation(image, *others, **keywords)
    parts = lumcv.tiles.reduce(operation, image, *others, tile=(7, 12), workers=2, **keywords)
    exact = (
        image.dtype != numpy.float32
        or operation is lumcv.min_max
        or keywords.get("kind") == "inf"
        and "rel" not in name
    )
    assert alike(parts, whole, exact), (parts, whole)


def test_reductions_of_large_sums_are_exact():
    image = numpy.full((700, 900), 65535, "uint16")
    image[::3, ::7] = 65534
    for kind in ("l1", "l2", "inf"):
        assert lumcv.tiles.reduce(lumcv.norm, image, kind=kind) == lumcv.norm(image, kind=kind)
    assert lumcv.tiles.reduce(lumcv.mean_stddev, image, tile=999) == lumcv.mean_stddev(image)


def test_extremes_of_nothing_but_nan():
    image = numpy.full((6, 8), numpy.nan, numpy.float32)
    assert lumcv.tiles.reduce(lumcv.min_max, image, tile=3) == lumcv.min_max(image)
    image[4, 5] = numpy.inf
    assert lumcv.tiles.reduce(lumcv.min_max, image, tile=3) == lumcv.min_max(image)


def test_counts():
    image = picture(SHAPE, "uint8")
    assert lumcv.tiles.reduce(numpy.count_nonzero, image, tile=8) == numpy.count_nonzero(image)
    with pytest.raises(TypeError, match="mean_stddev"):
        lumcv.tiles.reduce(numpy.sum, image)


def test_empty_mask_and_zero_denominator_warn_once():
    image, mask = picture(SHAPE, "uint8"), numpy.zeros(SHAPE, bool)
    with pytest.warns(lumcv.StatusWarning, match="EmptyMask") as caught:
        lumcv.tiles.reduce(lumcv.min_max, image, mask=mask, tile=9)
    assert len(caught) == 1
    with pytest.warns(lumcv.StatusWarning, match="ZeroDenominator") as caught:
        lumcv.tiles.reduce(lumcv.norm, image, image * 0, relative=True, tile=9)
    assert len(caught) == 1


def test_partial_functions_and_specs_are_operations():
    image = smooth(SHAPE)
    whole = lumcv.gaussian(image, 1.5, border="mirror")
    for operation in (
        functools.partial(lumcv.gaussian, sigma=1.5, border="mirror"),
        functools.partial(lumcv.Gaussian(1.5).apply, border="mirror"),
        functools.partial(lumcv.Gaussian(1.5), border="mirror"),
    ):
        assert same(lumcv.tiles.map(operation, image, tile=20), whole)
