"""Panels of the linear filters that take any kernel: the two stages alone, the separable filter, and the Gaussian."""

import numpy

import lumcv
from lumcv.raw import ffi, lib
from panels.drawing import Picture
from panels.panel import Section, Subject
from panels.tones import signed_roots

section = Section("Linear filters")


@section.panel("row-stage", "separable(grey, sobel_kernel(5, 1), [1], dtype='int16')")
def row_stage(s: Subject) -> Picture:
    return signed_roots(lumcv.separable(s.grey, lumcv.sobel_kernel(5, 1), [1], dtype="int16", border="mirror"))


@section.panel("column-stage", "raw.lumiFilterColumnPipeline_16s8u_C1R(rows, …)")
def column_stage(s: Subject) -> Picture:
    """An average over 31 rows by the stage alone, which takes its rows by their addresses: the library's own function."""
    taps = 31
    source, result = s.grey.astype("int16"), numpy.empty_like(s.grey)
    # Rows above and below the picture are its first and its last one, named again.
    places = numpy.clip(numpy.arange(-(taps // 2), s.height + taps // 2), 0, s.height - 1)
    rows = ffi.new("const Lum16s*[]", [ffi.from_buffer("Lum16s[]", source[y]) for y in places])
    size, needed = ffi.new("LumSize*", s.grey.shape[::-1])[0], ffi.new("Lum32s*")
    assert lib.lumiFilterColumnPipelineGetBufferSize_16s8u_C1R(size, taps, needed) == lib.lumStatusOk
    status = lib.lumiFilterColumnPipeline_16s8u_C1R(
        rows,
        ffi.from_buffer("Lum8u[]", result),
        s.width,
        size,
        ffi.new("Lum16s[]", [1] * taps),
        taps,
        taps,
        ffi.new("Lum8u[]", needed[0]),
    )
    assert status == lib.lumStatusOk
    return result


@section.panel("sharpened", "separable(picture, [-1, 6, -1], [-1, 6, -1], divisor=4)")
def sharpened(s: Subject) -> Picture:
    return lumcv.separable(s.colour, [-1, 6, -1], [-1, 6, -1], divisor=4)


for sigma in (1, 3, 8):
    section.panel(f"gaussian-{sigma}", f"gaussian(picture, {sigma}, border='mirror')")(
        lambda s, sigma=sigma: lumcv.gaussian(s.colour, sigma, border="mirror")
    )
