"""Marks on pictures, pixel by pixel as the program draws them. Whatever lies outside the picture is left out."""

import math
from typing import Any, NamedTuple, Sequence

import numpy

from panels import font
from panels.tones import colour_of

Picture = Any
Colour = tuple[int, int, int]
Point = tuple[int, int]

WHITE, BLACK = (255, 255, 255), (0, 0, 0)
ORANGE, CYAN, LIME, MAGENTA = (255, 150, 40), (60, 220, 235), (150, 235, 70), (240, 90, 190)
PAPER, GRID, FAINT = (18, 20, 26), (52, 56, 68), (130, 136, 150)
TEXT_ROWS = 12


def rounded(value: float) -> int:
    """The nearest integer, halves away from 0."""
    whole = math.trunc(value)
    return whole + (int(math.copysign(1, value)) if abs(value - whole) >= 0.5 else 0)


def fill_box(picture: Picture, x: int, y: int, width: int, height: int, colour: Colour) -> None:
    tone = colour if picture.ndim == 3 else (299 * colour[0] + 587 * colour[1] + 114 * colour[2]) // 1000
    picture[max(y, 0) : max(y + height, 0), max(x, 0) : max(x + width, 0)] = tone


def draw_box(picture: Picture, x: int, y: int, width: int, height: int, colour: Colour, thickness: int) -> None:
    """The outline, inside the box."""
    t = min(thickness, width, height)
    fill_box(picture, x, y, width, t, colour)
    fill_box(picture, x, y + height - t, width, t, colour)
    fill_box(picture, x, y, t, height, colour)
    fill_box(picture, x + width - t, y, t, height, colour)


def draw_line(picture: Picture, start: Point, end: Point, colour: Colour, thickness: int = 1) -> None:
    dx, dy = end[0] - start[0], end[1] - start[1]
    steps = max(abs(dx), abs(dy))
    for i in range(steps + 1):
        part = i / steps if steps else 0.0
        x, y = rounded(start[0] + part * dx), rounded(start[1] + part * dy)
        half = (thickness - 1) // 2
        fill_box(picture, x - half, y - half, thickness, thickness, colour)


def draw_cross(picture: Picture, centre: Point, colour: Colour, reach: int = 9, thickness: int = 2) -> None:
    """Two strokes that leave the marked pixel itself free."""
    gap, half, (x, y) = 3, (thickness - 1) // 2, centre
    fill_box(picture, x - reach, y - half, reach - gap, thickness, colour)
    fill_box(picture, x + gap + 1, y - half, reach - gap, thickness, colour)
    fill_box(picture, x - half, y - reach, thickness, reach - gap, colour)
    fill_box(picture, x - half, y + gap + 1, thickness, reach - gap, colour)


def text_size(text: str, scale: int) -> tuple[int, int]:
    return font.width_of(text) * scale, TEXT_ROWS * scale


def draw_text(picture: Picture, x: int, y: int, text: str, colour: Colour, scale: int = 2) -> None:
    for left, top, width, height in font.strokes(text):
        fill_box(picture, x + left * scale, y + top * scale, width * scale, height * scale, colour)


def draw_label(picture: Picture, x: int, y: int, text: str, colour: Colour = WHITE, scale: int = 2) -> None:
    """The text on a dark plate that keeps it legible on any ground."""
    width, height = text_size(text, scale)
    margin = 3 * scale
    fill_box(picture, x, y, width + 2 * margin, height - 2 * scale + 2 * margin, PAPER)
    draw_text(picture, x + margin, y + margin, text, colour, scale)


def label_scale(picture: Picture) -> int:
    return min(max(picture.shape[1] // 240, 1), 8)


def draw_notice(picture: Picture, text: str) -> None:
    """A label in the middle: that there is nothing to be seen."""
    scale = label_scale(picture)
    left = max((picture.shape[1] - text_size(text, scale)[0]) // 2, 0)
    draw_label(picture, left, picture.shape[0] // 2, text, WHITE, scale)


def stacked(above: Picture, below: Picture) -> Picture:
    width = max(above.shape[1], below.shape[1])
    result = numpy.full((above.shape[0] + below.shape[0], width, 3), PAPER, "uint8")
    result[: above.shape[0], : above.shape[1]] = colour_of(above)
    result[above.shape[0] :, : below.shape[1]] = colour_of(below)
    return result


class Curve(NamedTuple):
    values: Sequence[float]
    colour: Colour
    name: str


def plot(width: int, height: int, curves: Sequence[Curve], least: float, largest: float) -> Picture:
    """A picture of curves over one scale from `least` to `largest`, with a grid and the names as a legend."""
    divisions = 3
    picture = numpy.full((height, width, 3), PAPER, "uint8")
    scale = label_scale(picture)
    margin = 14 * scale
    span = largest - least if largest > least else 1.0
    levels = [least + span * i / divisions for i in range(divisions + 1)]
    texts = [f"{level:.4g}" for level in levels]
    left = max(margin, *(text_size(text, scale)[0] + 8 * scale for text in texts))
    bottom = height - 1 - margin
    used_height, used_width = max(1, height - 2 * margin), max(1, width - left - margin)

    def place(value: float) -> int:
        part = min(max((value - least) / span, 0.0), 1.0) if math.isfinite(value) else 0.0
        return bottom - rounded(part * (used_height - 1))

    for level, text in zip(levels, texts):
        y = place(level)
        fill_box(picture, left, y, used_width, 1, GRID)
        draw_text(picture, left - text_size(text, scale)[0] - 4 * scale, y - 4 * scale, text, FAINT, scale)
    legend = left
    for curve in curves:
        count = len(curve.values)
        before = None
        for i, value in enumerate(curve.values):
            part = i / (count - 1) if count > 1 else 0.0
            point = left + rounded(part * (used_width - 1)), place(value)
            draw_line(picture, before or point, point, curve.colour, 2)
            before = point
        draw_text(picture, legend, 2 * scale, curve.name, curve.colour, scale)
        legend += text_size(curve.name, scale)[0] + 2 * margin
    return picture
