"""Panels of the line searches: lines and segments over the edges that they were found in."""

import math
import warnings

import numpy

import lumcv
from panels.drawing import CYAN, LIME, ORANGE, Picture, draw_line, draw_notice, rounded
from panels.panel import Drawn, Section, Subject
from panels.tones import colour_of

section = Section("Hough lines")

THETA = float(numpy.float32(3.14159) / numpy.float32(180))


def edges_of(s: Subject) -> tuple[Picture, Picture]:
    """The edges, and the same dim and in colour to draw on."""
    edges = lumcv.canny(s.grey, 120, 280)
    return edges, colour_of(edges) // 2 + 20


def length_wanted(s: Subject, part_of_side: int) -> int:
    return max(max(s.width, s.height) // part_of_side, 1)


@section.panel("lines", "hough_lines(edges, threshold, count=12)")
def lines(s: Subject) -> Drawn:
    edges, picture = edges_of(s)
    with warnings.catch_warnings():
        # More lines than are asked for are no surprise.
        warnings.simplefilter("ignore", lumcv.StatusWarning)
        found = lumcv.hough_lines(edges, length_wanted(s, 8), theta=THETA, count=12).tolist()
    reach = math.hypot(s.width, s.height)
    for rho, theta in found:
        c, t = math.cos(theta), math.sin(theta)
        start, end = ((rounded(rho * c - along * t), rounded(rho * t + along * c)) for along in (-reach, reach))
        draw_line(picture, start, end, ORANGE)
    if not found:
        draw_notice(picture, "no line found")
    return Drawn(picture, f"{len(found)} lines")


@section.panel("segments", "hough_segments(edges, threshold, length, gap=3)")
def segments(s: Subject) -> Drawn:
    edges, picture = edges_of(s)
    length = length_wanted(s, 20)
    found = lumcv.hough_segments(edges, length, length, 3, theta=THETA).tolist()
    for i, (x0, y0, x1, y1) in enumerate(found):
        draw_line(picture, (x0, y0), (x1, y1), CYAN if i % 2 else LIME, 2)
    if not found:
        draw_notice(picture, "no segment found")
    return Drawn(picture, f"{len(found)} segments")
