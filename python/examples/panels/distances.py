"""Panels of the distance fields: distances from the edges of a picture, a marched band, and a scratched picture repaired."""

import numpy

import lumcv
from panels.drawing import WHITE, Picture, draw_line, draw_text
from panels.panel import Drawn, Section, Subject
from panels.tones import false_colours, scaled, with_contours

section = Section("Distances and inpainting")


def edges_of(grey: Picture) -> Picture:
    """Black where the picture's brightness steps most, white elsewhere: about one pixel in fifty is black."""
    tones = grey.astype("int32")
    steps = numpy.zeros_like(tones)
    steps[:-1, :-1] = abs(tones[:-1, 1:] - tones[:-1, :-1]) + abs(tones[1:, :-1] - tones[:-1, :-1])
    least = max(int(numpy.sort(steps, axis=None)[-1 - steps.size // 50]), 1)
    return numpy.where(steps >= least, 0, 255).astype("uint8")


def scratches_on(picture: Picture) -> Picture:
    """White strokes and letters across the picture."""
    h, w = picture.shape[:2]
    mask = numpy.zeros((h, w), "uint8")
    thickness = max(2, min(w, h) // 90)
    draw_line(mask, (w // 12, h // 7), (w * 9 // 10, h * 5 // 9), WHITE, thickness)
    draw_line(mask, (w * 7 // 8, h // 10), (w // 5, h * 8 // 9), WHITE, thickness)
    draw_line(mask, (w // 3, h // 15), (w * 4 // 9, h * 14 // 15), WHITE, thickness)
    draw_line(mask, (w // 20, h * 3 // 5), (w * 19 // 20, h * 4 // 5), WHITE, thickness)
    draw_text(mask, w // 4, h // 3, "SCRATCHED", WHITE, max(1, w // 160))
    return mask


def scratched(s: Subject) -> Picture:
    picture = s.colour.copy()
    picture[scratches_on(s.picture) != 0] = WHITE
    return picture


def repaired(s: Subject, method: str) -> Drawn:
    damaged = scratched(s)
    picture = lumcv.inpaint(damaged, scratches_on(s.picture), 5, method)
    away = abs(picture.astype(int) - s.colour).mean()
    return Drawn(picture, f"away from the picture by {away:.2f} tones on average")


section.panel("distance-edges")(lambda s: edges_of(s.grey))
section.panel("distance-chamfer", "distance(edges)")(lambda s: with_contours(lumcv.distance(edges_of(s.grey))))


@section.panel("distance-exact", "true_distance(edges)")
def exact(s: Subject) -> Drawn:
    distances = lumcv.true_distance(edges_of(s.grey))
    return Drawn(with_contours(distances), f"at most {distances.max():.1f} pixels")


@section.panel("distance-error", "true_distance(edges) - distance(edges)")
def distance_error(s: Subject) -> Drawn:
    edges = edges_of(s.grey)
    error = lumcv.absdiff(lumcv.true_distance(edges), lumcv.distance(edges))
    return Drawn(false_colours(scaled(error)), f"at most {error.max():.2f} pixels")


@section.panel("marched-band", "fast_marching(scratches, radius=20)")
def marched_band(s: Subject) -> Drawn:
    distances = lumcv.fast_marching(scratches_on(s.picture), 20)
    return Drawn(with_contours(distances), f"from {distances.min():.1f} to {distances.max():.1f} pixels")


section.panel("inpaint-scratched")(scratched)
for name in ("front", "isophote"):
    section.panel(f"inpaint-{name}", f"inpaint(picture, scratches, radius=5, method={name!r})")(
        lambda s, name=name: repaired(s, name)
    )
