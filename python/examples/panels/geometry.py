"""Panels of the lens geometry: a picture as a lens would bend it, the same corrected, and the pixels along a line."""

from typing import NamedTuple

import numpy

import lumcv
from panels.drawing import BLACK, CYAN, Curve, Picture, draw_line, plot, stacked
from panels.panel import Drawn, Section, Subject
from panels.tones import with_contours

section = Section("Lens geometry")

#: A lens that bends straight lines outward, as wide ones do.
K1, K2 = -0.28, 0.06


class Lens(NamedTuple):
    focal: tuple[float, float]
    centre: tuple[float, float]


def lens_for(s: Subject) -> Lens:
    focal = float(numpy.float32(0.6) * numpy.float32(max(s.width, s.height)))
    return Lens((focal, focal), ((s.width - 1) / 2, (s.height - 1) / 2))


def bent(s: Subject) -> Picture:
    """The picture as the lens would show it. The model gives the bent place of a straight one; the way back is found by
    repetition, which converges fast for a lens as mild as this."""
    (focal, _), (cx, cy) = lens_for(s)
    k1, k2 = float(numpy.float32(K1)), float(numpy.float32(K2))
    y, x = numpy.mgrid[: s.height, : s.width].astype(float)
    dx, dy = x - cx, y - cy
    stretch = numpy.ones_like(x)
    for _ in range(24):
        r2 = (dx * dx + dy * dy) * stretch * stretch / float(numpy.float32(focal) * numpy.float32(focal))
        stretch = 1 / (1 + k1 * r2 + k2 * r2 * r2)
    sx, sy = cx + dx * stretch, cy + dy * stretch
    outside = (sx < 0) | (sy < 0) | (sx > s.width - 1) | (sy > s.height - 1)
    sx, sy = numpy.where(outside, 0, sx), numpy.where(outside, 0, sy)
    left, top = sx.astype(int), sy.astype(int)
    right, bottom = numpy.minimum(left + 1, s.width - 1), numpy.minimum(top + 1, s.height - 1)
    across, down = (sx - left)[..., None], (sy - top)[..., None]
    upper = s.colour[top, left] * (1 - across) + s.colour[top, right] * across
    lower = s.colour[bottom, left] * (1 - across) + s.colour[bottom, right] * across
    result = (upper * (1 - down) + lower * down + 0.5).astype("uint8")
    result[outside] = 0
    return result


section.panel("through-a-lens")(bent)


@section.panel("lens-corrected", "undistort(picture, focal, centre, -0.28, 0.06)")
def lens_corrected(s: Subject) -> Drawn:
    picture = lumcv.undistort(bent(s), *lens_for(s), K1, K2)
    away = abs(picture.astype(int) - s.colour).mean()
    return Drawn(picture, f"away from the picture by {away:.1f} tones on average")


@section.panel("lens-map", "undistort_map(shape, focal, centre, -0.28, 0.06)")
def lens_map(s: Subject) -> Drawn:
    across, down = lumcv.undistort_map(s.grey.shape, *lens_for(s), K1, K2)
    y, x = numpy.mgrid[: s.height, : s.width].astype("float32")
    moved = numpy.hypot(across - x, down - y)
    return Drawn(with_contours(moved), f"at most {moved.max():.1f} pixels")


@section.panel("sampled-line", "sample_line(picture, start, end)")
def sampled_line(s: Subject) -> Drawn:
    start = s.width // 24, s.height // 9
    end = s.width - 1 - s.width // 24, s.height - 1 - s.height // 5
    samples = lumcv.sample_line(s.colour, start, end)
    colours = {"red": (255, 96, 84), "green": (96, 220, 110), "blue": (96, 160, 255)}
    curves = [Curve(samples[:, c].tolist(), colour, name) for c, (name, colour) in enumerate(colours.items())]
    marked = s.colour.copy()
    draw_line(marked, start, end, BLACK, 4)
    draw_line(marked, start, end, CYAN, 2)
    picture = stacked(marked, plot(s.width, max(s.height // 2, 1), curves, 0, 255))
    return Drawn(picture, f"{len(samples)} samples")
