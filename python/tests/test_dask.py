"""Chunks of dask arrays: any chunking gives the bits of the whole, on threads and on a cluster whose workers die."""

import os
import pathlib
import signal
import time
import warnings
from functools import partial

import dask
import dask.array
import distributed
import numpy
import pytest
from conftest import picture, smooth
from operations import CASES, SHAPE, same

import lumcv
import lumcv.dask

CHUNKINGS = [((41,), (53,)), ((7, 1, 20, 13), (2, 30, 21)), ((40, 1), (1, 1, 51)), ((13, 13, 15), (53,))]


@pytest.fixture(autouse=True)
def synchronous():
    with dask.config.set(scheduler="synchronous"):
        yield


@pytest.mark.parametrize("name, operation, image, others", CASES, ids=[case[0] for case in CASES])
def test_chunks_have_the_bits_of_the_whole(name, operation, image, others):
    whole = operation(image, *others)
    for chunks in CHUNKINGS[1:3]:
        rest = ((image.shape[2],),) if image.ndim == 3 else ()
        chunked = dask.array.from_array(image, chunks=(*chunks, *rest))
        result = lumcv.dask.map(operation, chunked, *others)
        for each in result if isinstance(result, tuple) else (result,):
            assert each.chunks[:2] == chunks
        computed = dask.compute(*result) if isinstance(result, tuple) else result.compute()
        assert same(computed, whole), chunks


@pytest.mark.parametrize("chunks", CHUNKINGS)
def test_results_are_pictures_of_further_operations(chunks):
    image = smooth(SHAPE)
    chunked = dask.array.from_array(image, chunks=chunks)
    blurred = lumcv.dask.map(lumcv.gaussian, chunked, sigma=1.2)
    top = lumcv.dask.map(lumcv.morph_tophat, blurred, mask=5)
    whole = lumcv.morph_tophat(lumcv.gaussian(image, 1.2), 5)
    assert same(top.compute(), whole)


def test_other_pictures_may_have_other_chunks():
    a, b = picture(SHAPE, "uint8"), picture(SHAPE, "uint8", 7)
    first = dask.array.from_array(a, chunks=(10, 11))
    second = dask.array.from_array(b, chunks=(23, 9))
    assert same(lumcv.dask.map(lumcv.absdiff, first, second).compute(), lumcv.absdiff(a, b))
    assert same(lumcv.dask.map(lumcv.absdiff, first, b).compute(), lumcv.absdiff(a, b))


@pytest.mark.parametrize(
    "operation", [lumcv.accumulate, partial(lumcv.accumulate_weighted, alpha=0.25)], ids=["accumulate", "weighted"]
)
def test_running_sums_leave_the_chunks_alone(operation):
    """However often the engine runs a task, the sum is that of one frame more."""
    image, total = picture(SHAPE, "uint8"), picture(SHAPE, "float32", 4)
    before, whole = total.copy(), operation(image, total.copy())
    chunked = dask.array.from_array(image, chunks=(10, 11))
    for given in (total, dask.array.from_array(total, chunks=(10, 11))):
        result = lumcv.dask.map(operation, chunked, given)
        assert same(result.compute(), whole) and same(result.compute(), whole)
        assert same(total, before)


def test_channels_in_chunks_are_brought_together():
    image = picture((*SHAPE, 3), "uint8")
    chunked = dask.array.from_array(image, chunks=(20, 20, 1))
    assert same(lumcv.dask.map(lumcv.gaussian, chunked, sigma=1).compute(), lumcv.gaussian(image, 1))


def test_nothing_is_computed_before_it_is_asked_for():
    def fail(*arguments):
        raise AssertionError("computed")

    chunked = dask.array.from_array(smooth(SHAPE), chunks=20).map_blocks(
        fail, dtype="uint8", meta=numpy.empty((0, 0), "uint8")
    )
    result = lumcv.dask.map(lumcv.sobel, chunked)
    assert (result.dtype, result.shape) == (numpy.dtype("int16"), SHAPE)
    lumcv.dask.reduce(lumcv.mean, chunked)
    with pytest.raises(AssertionError, match="computed"):
        result.compute()


def test_chunks_overlap_by_exactly_the_reach():
    chunked = dask.array.from_array(smooth((60, 60)), chunks=20)
    result = lumcv.dask.map(lumcv.separable, chunked, kernel_x=[1, 1, 1, 1], kernel_y=[1, 1, 1], divisor=1)
    pieces = [key for key in result.dask if isinstance(key, tuple) and key[0].startswith("lumcv-piece")]
    rows = {(key[3], key[4]) for key in pieces}
    columns = {(key[5], key[6]) for key in pieces}
    assert rows == {(0, 20), (19, 20), (0, 1)}
    assert columns == {(0, 20), (19, 20), (0, 2)}


@pytest.mark.parametrize("operation", [lumcv.label, lumcv.true_distance, lumcv.canny])
def test_global_operations_are_refused_with_the_reason(operation):
    keywords = {"low": 1, "high": 2} if operation is lumcv.canny else {}
    with pytest.raises(ValueError, match="as a whole: "):
        lumcv.dask.map(operation, dask.array.zeros(SHAPE, dtype="uint8", chunks=9), **keywords)


def test_what_is_no_picture_is_refused():
    with pytest.raises(TypeError, match="dask.array.Array"):
        lumcv.dask.map(lumcv.lowpass, smooth(SHAPE))
    with pytest.raises(TypeError, match="lumcv.dask.map"):
        lumcv.lowpass(dask.array.zeros(SHAPE, dtype="uint8"))
    with pytest.raises(TypeError, match="these would do"):
        lumcv.dask.map(lumcv.lowpass, dask.array.zeros(SHAPE, dtype="int32"))
    with pytest.raises(ValueError, match="the picture has"):
        lumcv.dask.map(lumcv.absdiff, dask.array.zeros(SHAPE, dtype="uint8"), dask.array.zeros((2, 2), dtype="uint8"))


@pytest.mark.parametrize("chunks", CHUNKINGS)
@pytest.mark.parametrize("dtype", ["uint8", "uint16"])
def test_reductions_of_integers_are_exact(chunks, dtype):
    image, other = picture(SHAPE, dtype), picture(SHAPE, dtype, 5)
    mask = picture(SHAPE, "uint8", 3) > 100
    chunked = dask.array.from_array(image, chunks=chunks)
    for keywords in ({}, {"mask": mask}):
        for operation in (lumcv.mean, lumcv.mean_stddev, lumcv.min_max):
            assert lumcv.dask.reduce(operation, chunked, **keywords).compute() == operation(image, **keywords)
        for kind in ("l1", "l2", "inf"):
            for relative in (False, True):
                named = {"kind": kind, "relative": relative, **keywords}
                told = lumcv.dask.reduce(lumcv.norm, chunked, other, **named).compute()
                assert told == lumcv.norm(image, other, **named)
    assert lumcv.dask.reduce(numpy.count_nonzero, chunked).compute() == numpy.count_nonzero(image)


def test_reductions_of_floats_are_close():
    image = picture(SHAPE, "float32")
    chunked = dask.array.from_array(image, chunks=15)
    told, whole = lumcv.dask.reduce(lumcv.mean_stddev, chunked).compute(), lumcv.mean_stddev(image)
    assert told == pytest.approx(whole, rel=1e-5)
    assert lumcv.dask.reduce(lumcv.min_max, chunked).compute() == lumcv.min_max(image)


@pytest.fixture(scope="module")
def cluster():
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        with distributed.LocalCluster(
            n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None, protocol="tcp"
        ) as processes:
            with distributed.Client(processes) as client:
                yield client


#: Each operation once, and of those with borders each border.
EACH = list({tuple(case[0].split("-")[:2]): case for case in CASES}.values())


@pytest.mark.parametrize("name, operation, image, others", EACH, ids=[case[0] for case in EACH])
def test_worker_processes_give_the_bits_of_the_whole(cluster, name, operation, image, others):
    rest = image.shape[2:]
    chunked = dask.array.from_array(image, chunks=(11, 17, *rest))
    result = lumcv.dask.map(operation, chunked, *others)
    several = result if isinstance(result, tuple) else (result,)
    computed = tuple(cluster.gather(cluster.compute(list(several))))
    whole = operation(image, *others)
    assert same(computed, whole if isinstance(whole, tuple) else (whole,))


@pytest.mark.parametrize("border", ["replicate", "constant"])
def test_worker_processes_follow_edges_across_the_seams(cluster, border):
    image = smooth(SHAPE)
    edges = lumcv.dask.canny(dask.array.from_array(image, chunks=(11, 17)), 40, 120, border=border)
    assert same(cluster.compute(edges).result(), lumcv.canny(image, 40, 120, border=border))


def test_worker_processes_tell_numbers(cluster):
    image = picture(SHAPE, "uint8")
    chunked = dask.array.from_array(image, chunks=(11, 17))
    for operation in (lumcv.mean, lumcv.mean_stddev, lumcv.min_max, lumcv.norm, numpy.count_nonzero):
        assert cluster.compute(lumcv.dask.reduce(operation, chunked)).result() == operation(image)


def slow(block, folder=None):
    """Tells the process that runs it, and takes its time."""
    (pathlib.Path(folder) / str(os.getpid())).touch()
    time.sleep(0.05)
    return block


def test_nothing_is_lost_when_a_worker_is_killed(cluster, tmp_path):
    image = smooth((160, 160))
    chunked = dask.array.from_array(image, chunks=20).map_blocks(
        slow, folder=str(tmp_path), dtype="uint8", meta=numpy.empty((0, 0), "uint8")
    )
    result = lumcv.dask.map(lumcv.gaussian, chunked, sigma=2, border="mirror")
    future = cluster.compute(result)
    started = time.monotonic()
    while len(list(tmp_path.iterdir())) < 2:
        assert time.monotonic() - started < 30
        time.sleep(0.01)
    victim = min(int(path.name) for path in tmp_path.iterdir())
    # What runs is a worker of the cluster, and no process of anybody else's.
    assert victim in cluster.run(os.getpid).values()
    assert not future.done()
    os.kill(victim, signal.SIGKILL)
    assert same(future.result(timeout=60), lumcv.gaussian(image, 2, border="mirror"))
