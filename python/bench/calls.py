#!/usr/bin/env python3
"""What a call from Python costs beyond its work, and what two threads gain.

    calls.py [--check]

The rows are the least time of a call on an 8 x 8 picture, in microseconds; the last one is the time in which two threads
process two pictures, as a share of the time that one needs. With --check the exit status is 1 where a call takes 5
microseconds or more, or two threads more than 0.6.
"""

import sys
import threading
import time
import timeit

import numpy

import lumcv

tiny = numpy.zeros((8, 8), numpy.uint8)
out = numpy.zeros_like(tiny)
floats = numpy.zeros((8, 8), numpy.float32)
blur = lumcv.Gaussian(1.0)
element = lumcv.StructuringElement(3)
inner = numpy.zeros((10, 10), numpy.uint8)[1:9, 1:9]

ROWS = {
    "absdiff": lambda: lumcv.absdiff(tiny, tiny, out),
    "absdiff, new result": lambda: lumcv.absdiff(tiny, tiny),
    "absdiff, view": lambda: lumcv.absdiff(inner, 3, out),
    "accumulate": lambda: lumcv.accumulate(tiny, floats),
    "gaussian": lambda: lumcv.gaussian(tiny, 1.0, out=out),
    "Gaussian.apply": lambda: blur.apply(tiny, out=out),
    "lowpass": lambda: lumcv.lowpass(tiny, out=out),
    "dilate": lambda: lumcv.dilate(tiny, element, out=out),
    "mean": lambda: lumcv.mean(tiny),
    "min_max": lambda: lumcv.min_max(tiny),
    "integral": lambda: lumcv.integral(tiny),
    "norm of a difference": lambda: lumcv.norm(tiny, tiny),
    "separable": lambda: lumcv.separable(tiny, [1, 2, 1], [1, 2, 1], divisor=4, out=out),
    "sobel": lambda: lumcv.sobel(tiny),
    "canny": lambda: lumcv.canny(tiny, 40, 120, out=out),
    "pyramid_down": lambda: lumcv.pyramid_down(tiny),
    "distance": lambda: lumcv.distance(tiny),
    "flood_fill": lambda: lumcv.flood_fill(tiny, (0, 0), 9),
}


def least(call, repeats=300, count=100):
    call()
    return min(timeit.repeat(call, number=count, repeat=repeats)) / count * 1e6


def share_of_two_threads(repeats=15):
    pictures = [numpy.random.default_rng(n).integers(0, 256, (1080, 1920), numpy.uint8) for n in range(2)]
    results = [numpy.empty_like(each) for each in pictures]
    filter = lumcv.Gaussian(3.0)

    def work(which):
        for _ in range(5):
            filter.apply(pictures[which], out=results[which])

    def serial():
        work(0)
        work(1)

    def parallel():
        threads = [threading.Thread(target=work, args=(which,)) for which in range(2)]
        for each in threads:
            each.start()
        for each in threads:
            each.join()

    times = []
    for job in (serial, parallel):
        spent = []
        for _ in range(repeats):
            begin = time.perf_counter()
            job()
            spent.append(time.perf_counter() - begin)
        times.append(min(spent))
    return times[1] / times[0]


if __name__ == "__main__":
    slow = False
    for name, call in ROWS.items():
        spent = least(call)
        slow |= spent >= 5
        print(f"{name:24}{spent:8.2f}")
    share = share_of_two_threads()
    print(f"{'two threads':24}{share:8.2f}")
    sys.exit("--check" in sys.argv and (slow or share > 0.6))
