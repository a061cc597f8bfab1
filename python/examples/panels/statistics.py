"""Panels of the statistics: an average that follows a moving picture, and what is known of a picture's values."""

import numpy

import lumcv
from panels.drawing import CYAN, ORANGE, Colour, Picture, Point, draw_cross, draw_label, label_scale, text_size
from panels.panel import Drawn, Section, Subject
from panels.tones import colour_of, scaled, shifted

section = Section("Statistics")


@section.panel("running-average", "accumulate_weighted(frame, average, 0.12)")
def running_average(s: Subject) -> Picture:
    planes = numpy.moveaxis(s.picture.reshape(s.height, s.width, -1), 2, 0)
    averages = []
    for plane in planes:
        average = plane.astype("float32")
        for frame in range(1, 25):
            moved = shifted(plane, 3 * frame, 0)
            lumcv.accumulate_weighted(moved, average, 0.12)
        averages.append(scaled(average, 0, 255))
    return numpy.stack(averages, axis=2).reshape(s.picture.shape)


def mark_both(picture: Picture, marks: list[tuple[Point, str, Colour]]) -> None:
    """Crosses at two places, each with a label beside it where there is room for it; the second label goes under the first
    where it would cover it, or above it at the bottom of the picture."""
    height, width = picture.shape[:2]
    scale = label_scale(picture)
    away = 8 * scale
    boxes = []
    for (x, y), text, _ in marks:
        wide, tall = text_size(text, scale)
        left = x + away if x + wide + 2 * away < width else max(x - wide - away, away // 2)
        top = y + away // 2 if y + tall + 2 * away < height else y - tall - away
        boxes.append([left, top, wide, tall])
    box, other = boxes
    lines = box[3] + away
    beside = other[0] < box[0] + box[2] + away and box[0] < other[0] + other[2] + away
    if beside and abs(other[1] - box[1]) < lines:
        below = max(box[1], 0) + lines
        other[1] = below if below + other[3] < height else box[1] - lines
    for (left, top, _, _), (_, text, colour) in zip(boxes, marks):
        draw_label(picture, left, max(top, 0), text, colour, scale)
    for place, _, colour in marks:
        draw_cross(picture, place, colour, 6 * scale, scale)


@section.panel("extremes", "min_max(grey)")
def extremes(s: Subject) -> Drawn:
    found = lumcv.min_max(s.grey)
    picture = colour_of(s.grey).copy()
    least, largest = found.min_at[::-1], found.max_at[::-1]
    mark_both(picture, [(least, f"least {found.min:.0f}", CYAN), (largest, f"largest {found.max:.0f}", ORANGE)])
    return Drawn(picture, f"least {found.min:.0f}, at {least}; largest {found.max:.0f}, at {largest}")


@section.panel("inside-a-mask", "mean_stddev(grey, mask=ellipse)")
def inside_a_mask(s: Subject) -> Drawn:
    y, x = numpy.mgrid[: s.height, : s.width]
    mask = ((x + 0.5) / s.width * 2 - 1) ** 2 + ((y + 0.5) / s.height * 2 - 1) ** 2 < 0.7
    inside = lumcv.mean_stddev(s.grey, mask)
    return Drawn(
        numpy.where(mask[:, :, None], s.colour, s.colour // 5),
        f"mean {inside.mean:.2f}, standard deviation {inside.stddev:.2f}",
    )
