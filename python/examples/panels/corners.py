"""Panels of edges and corners."""

import math

import numpy

import lumcv
from panels.drawing import CYAN, ORANGE, Picture, draw_box, draw_cross, draw_line, draw_notice, rounded
from panels.panel import Drawn, Section, Subject
from panels.tones import colour_of, false_colours, scaled

section = Section("Edges and corners")


@section.panel("canny-edges", "canny(grey, 60, 140)")
def edges(s: Subject) -> Drawn:
    picture = lumcv.canny(s.grey, 60, 140)
    return Drawn(picture, f"{numpy.count_nonzero(picture)} pixels on edges")


@section.panel("harris-response", "harris(grey, k=0.04)")
def harris_response(s: Subject) -> Picture:
    response = lumcv.harris(s.grey, 0.04, scale=1e-12)
    return scaled(numpy.copysign(numpy.sqrt(numpy.sqrt(numpy.abs(response))), response), -1, 1)


section.panel("smaller-eigenvalue", "min_eigen(grey)")(
    lambda s: false_colours(scaled(numpy.sqrt(numpy.maximum(lumcv.min_eigen(s.grey), 0))))
)


@section.panel("strongest-corners", "find_peaks(harris(grey), 1e-4)")
def strongest_corners(s: Subject) -> Drawn:
    picture = colour_of(s.grey).copy()
    if min(s.grey.shape) < 3:
        return Drawn(picture, "too narrow for peaks")
    response = lumcv.harris(s.grey, 0.04, scale=1e-12)
    peaks = lumcv.find_peaks(response, 1e-4)
    strongest = peaks[numpy.argsort(-response[peaks[:, 1], peaks[:, 0]], kind="stable")][:60]
    for x, y in strongest.tolist():
        draw_cross(picture, (x, y), ORANGE, 7)
    if len(strongest) == 0:
        draw_notice(picture, "no corner found")
    return Drawn(picture, f"{len(peaks)} peaks above the threshold, {len(strongest)} strongest corners shown")


def segment_test(s: Subject, radius: int, arc: int) -> Drawn:
    """Corners with a stroke to their brighter side, on the picture made darker. Angles count from the left over below."""
    found = lumcv.fast_corners(s.grey, 24, radius, arc, bins=32)
    strongest = found[numpy.argsort(-found["score"], kind="stable")][:600]
    picture = (colour_of(s.grey).astype(int) * 3 // 5).astype("uint8")
    for x, y, kind, _, degrees, _ in strongest.tolist():
        colour = ORANGE if kind == 0 else CYAN
        angle = degrees * (3.14159265358979 / 180)
        tip = x - rounded(3 * radius * math.cos(angle)), y + rounded(3 * radius * math.sin(angle))
        draw_line(picture, (x, y), tip, colour)
        draw_box(picture, x - radius, y - radius, 2 * radius + 1, 2 * radius + 1, colour, 1)
    if len(strongest) == 0:
        draw_notice(picture, "no corner found")
    return Drawn(picture, f"{len(found)} corners, the {len(strongest)} strongest drawn")


for radius, arc in ((3, 9), (9, 30)):
    section.panel(f"corners-of-circle-{radius}", f"fast_corners(grey, 24, {radius}, {arc}, bins=32)")(
        lambda s, radius=radius, arc=arc: segment_test(s, radius, arc)
    )
