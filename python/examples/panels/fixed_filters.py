"""Panels of the filters with built-in kernels."""

import numpy

import lumcv
from panels.drawing import Picture
from panels.panel import Section, Subject
from panels.tones import false_colours, scaled, shifted, signed_roots

section = Section("Filters with built-in kernels")

section.panel("laplacian", "laplacian(grey, 5)")(lambda s: signed_roots(lumcv.laplacian(s.grey, 5)))
section.panel("cross-derivative", "sobel(grey, 1, 1, 5)")(lambda s: signed_roots(lumcv.sobel(s.grey, 1, 1, 5)))
section.panel("low-pass", "lowpass(grey, 5)")(lambda s: lumcv.lowpass(s.grey, 5))


def steps_of(s: Subject) -> Picture:
    """Steps to the right in the first channel, downward in the second one and in both directions in the third one."""
    moves = ((2, 0), (0, 2), (2, 2))
    moved = numpy.stack([shifted(s.colour[:, :, c], *move) for c, move in enumerate(moves)], axis=2)
    return lumcv.absdiff(s.colour, moved)


for name, norm in (("largest", "inf"), ("mean", "l1"), ("root", "l2")):
    section.panel(f"colour-gradient-{name}", f"gradient_to_gray(steps, {norm!r})")(
        lambda s, norm=norm: false_colours(scaled(lumcv.gradient_to_gray(steps_of(s), norm), 0, 128))
    )
