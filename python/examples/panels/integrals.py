"""Panels of the integral images, upright and tilted, and of what is read from them."""

import lumcv
from panels.panel import Drawn, Section, Subject
from panels.tones import false_colours, scaled, with_contours

section = Section("Integral images")

section.panel("integral", "integral(grey, 'float32')")(lambda s: with_contours(lumcv.integral(s.grey, "float32")))
section.panel("tilted-integral", "tilted_integral(grey, 'float32')")(
    lambda s: with_contours(lumcv.tilted_integral(s.grey, "float32"))
)


@section.panel("local-deviation", "rect_stddev(sums, squares, (0, 0, 9, 9))")
def local_deviation(s: Subject) -> Drawn:
    sums, squares = lumcv.integral(s.grey, squares="float64")
    side = min(9, *s.grey.shape)
    deviation = lumcv.rect_stddev(sums, squares, (0, 0, side, side))
    return Drawn(false_colours(scaled(deviation)), f"largest deviation: {deviation.max():.1f}")
