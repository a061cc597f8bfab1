"""Threads that share specs, and memory that lives as long as a call."""

import gc
import sys
import threading
import weakref
from concurrent.futures import ThreadPoolExecutor

import numpy
import pytest
from conftest import picture, smooth

import lumcv

THREADS = 8


def together(job):
    """The results of a job in threads that all start at once."""
    gate = threading.Barrier(THREADS)

    def run(index):
        gate.wait()
        return [job(index) for _ in range(20)]

    with ThreadPoolExecutor(THREADS) as pool:
        return list(pool.map(run, range(THREADS)))


SPECS = {
    "Gaussian": lambda: lumcv.Gaussian(2.0).apply,
    "Separable": lambda: lumcv.Separable([1, 2, 1], [1, 3, 1], divisor=5).apply,
    "StructuringElement": lambda: (lambda image, element=lumcv.StructuringElement(7): lumcv.morph_open(image, element)),
    "fast_corners": lambda: lumcv.fast_marks,
    "hough_segments": lambda: (lambda image: lumcv.hough_segments(image > 200, 15)),
    "Inpainter": lambda: lumcv.Inpainter(numpy.pad(numpy.ones((6, 9), bool), ((30, 64), (40, 101)))).apply,
    "HaarStage": lambda: (lambda image, cascade=disc(): cascade.windows(image)),
}


def disc():
    bright = lumcv.Classifier([(0, 0, 6, 6, -1), (2, 2, 2, 2, 9)], 20, 0, 1)
    return lumcv.HaarCascade([lumcv.HaarStage([bright], 1)], (6, 6), 5)


@pytest.mark.parametrize("name", SPECS)
@pytest.mark.filterwarnings("ignore::lumcv.StatusWarning")
def test_one_spec_serves_many_threads(name):
    images = [smooth((100, 150), seed=seed) for seed in range(THREADS)]
    spec = SPECS[name]()
    expected = [spec(image) for image in images]
    for index, results in enumerate(together(lambda index: spec(images[index]))):
        for result in results:
            pairs = zip(result, expected[index]) if isinstance(result, tuple) else [(result, expected[index])]
            assert all(numpy.array_equal(*pair) for pair in pairs)


def test_remembered_plans_may_be_forgotten_by_other_threads():
    images = [picture((20 + n, 30 + n), "uint8") for n in range(40)]
    expected = [lumcv.gaussian(image, 1 + index / 40) for index, image in enumerate(images)]

    def all_sizes(_):
        return [lumcv.gaussian(image, 1 + index / 40) for index, image in enumerate(images)]

    for results in together(all_sizes):
        for result in results:
            assert all((a == b).all() for a, b in zip(result, expected))


def test_collection_while_a_call_runs():
    stop = threading.Event()

    def collect():
        while not stop.is_set():
            gc.collect()

    collector = threading.Thread(target=collect)
    collector.start()
    try:
        for seed in range(30):
            image = smooth((200, 300), seed=seed)
            kept = image.copy()
            # Neither the image nor the spec has another owner than the call.
            result = lumcv.Gaussian(1.5).apply(smooth((200, 300), seed=seed))
            assert (result == lumcv.gaussian(kept, 1.5)).all()
    finally:
        stop.set()
        collector.join()


def test_array_lives_until_the_call_has_ended():
    begun, ended = threading.Event(), []
    image = numpy.ones((1500, 1500), "uint8")
    reference = weakref.ref(image)

    def run(array):
        begun.set()
        result = lumcv.true_distance(array)
        ended.append(reference() is not None)
        return result

    other = threading.Thread(target=run, args=(image,))
    del image
    other.start()
    begun.wait()
    gc.collect()
    other.join()
    assert ended == [True]
    del other
    gc.collect()
    assert reference() is None


def test_buffer_of_a_contiguous_array_is_held_while_it_is_used():
    from lumcv import _array

    image = numpy.zeros(100, "uint8")
    pointer = _array.source(image.reshape(10, 10))[0]
    with pytest.raises(ValueError, match="cannot resize"):
        image.resize(10_000)
    assert pointer is not None


def test_calls_leave_no_references_behind():
    image = picture((20, 20), "uint8")
    before = sys.getrefcount(image)
    for _ in range(5):
        lumcv.gaussian(image, 1.0)
        lumcv.dilate(image[:, :10], 3)
        lumcv.mean_stddev(image)
    assert sys.getrefcount(image) == before
