"""Panels of motion: points followed between two views, and a moving object in what a camera that stands still sees."""

import functools
import math
from typing import NamedTuple

import numpy

import lumcv
from panels.drawing import CYAN, ORANGE, Colour, Picture, Point, draw_box, draw_line, draw_notice, rounded
from panels.panel import Drawn, Section, Subject
from panels.tones import colour_of, false_colours, scaled

section = Section("Motion")

FRAMES = 60
FLOAT = numpy.float32


def rotated_and_moved(grey: Picture, angle: float, dx: float, dy: float) -> Picture:
    """The grey picture rotated about its centre and moved, edges repeated."""
    height, width = grey.shape
    cx, cy, c, s = width / 2, height / 2, math.cos(angle), math.sin(angle)
    y, x = numpy.mgrid[:height, :width]
    u, v = x - cx - dx, y - cy - dy
    sx, sy = numpy.clip(cx + c * u + s * v, 0, width - 1.0), numpy.clip(cy - s * u + c * v, 0, height - 1.0)
    left = numpy.minimum(sx.astype(int), max(width - 2, 0))
    top = numpy.minimum(sy.astype(int), max(height - 2, 0))
    right, below = numpy.minimum(left + 1, width - 1), numpy.minimum(top + 1, height - 1)
    fx, fy = sx - left, sy - top
    value = (1 - fy) * ((1 - fx) * grey[top, left] + fx * grey[top, right]) + fy * (
        (1 - fx) * grey[below, left] + fx * grey[below, right]
    )
    return (value + 0.5).astype("uint8")


def textured_points(grey: Picture, spacing: int) -> Picture:
    """The best textured point of each square, in rows from the top."""
    texture = lumcv.min_eigen(grey, window=5)
    least = texture.max() / FLOAT(1000)
    points = []
    for top in range(0, grey.shape[0], spacing):
        for left in range(0, grey.shape[1], spacing):
            square = texture[top : top + spacing, left : left + spacing]
            y, x = numpy.unravel_index(square.argmax(), square.shape)
            if square[y, x] > least:
                points.append((left + x, top + y))
    return numpy.array(points, FLOAT).reshape(-1, 2)


def colour_of_direction(dx: float, dy: float) -> Colour:
    angle = FLOAT(math.atan2(dy, dx))
    third = FLOAT(2.0943951)
    red, green, blue = (
        int(FLOAT(150) + FLOAT(105) * FLOAT(math.cos(angle - shift))) for shift in (FLOAT(0), third, FLOAT(2) * third)
    )
    return red, green, blue


def draw_tracks(picture: Picture, starts: Picture, ends: Picture) -> None:
    """Each track as an arrow, in the colour of its direction."""
    thickness = max(1, picture.shape[1] // 600)
    barb = FLOAT(3 * thickness)

    def pixel(x: float, y: float) -> Point:
        return rounded(float(x)), rounded(float(y))

    for start, end in zip(starts, ends):
        dx, dy = end - start
        length = numpy.hypot(dx, dy)
        tone, tip = colour_of_direction(dx, dy), pixel(*end)
        draw_line(picture, pixel(*start), tip, tone, thickness)
        if length < 1:
            side = 2 * thickness + 1
            draw_box(picture, tip[0] - thickness, tip[1] - thickness, side, side, tone, thickness)
            continue
        for side in (FLOAT(-0.6), FLOAT(0.6)):
            x, y = end[0] - barb * (dx + side * dy) / length, end[1] - barb * (dy - side * dx) / length
            draw_line(picture, tip, pixel(x, y), tone, thickness)


@section.panel("optical-flow", "optical_flow(before, after, points, iterations=30)")
def optical_flow(s: Subject) -> Drawn:
    reach = s.width / 160
    after = rotated_and_moved(s.grey, 0.02, reach, -reach / 2)
    points = textured_points(s.grey, max(8, s.width // 48))
    flow = lumcv.optical_flow(s.grey, after, points, window=21, levels=3, iterations=30, threshold=0.01)
    found = flow.status == 0
    picture = colour_of(after).copy()
    draw_tracks(picture, points[found], flow.points[found])
    if not found.any():
        draw_notice(picture, "no point found again")
    return Drawn(picture, f"{numpy.count_nonzero(found)} of {len(points)} points found again")


class Watch(NamedTuple):
    """What a camera that stands still has seen after some frames."""

    frame: Picture
    mask: Picture
    background: Picture
    history: Picture


def frame_of(scene: Picture, number: int, engine: numpy.random.RandomState) -> Picture:
    """A ball that crosses the scene with its shadow on the ground, and grain over all."""
    height, width = scene.shape[:2]
    radius = max(3.0, height / 8)
    x = width * (0.05 + 0.9 * number / FRAMES)
    y = height * 0.45 + height * 0.1 * math.sin(number * 0.2)
    row, column = numpy.mgrid[:height, :width]
    u, v = (column - x) / radius, (row - y) / radius
    s, t = (column - x - radius) / (1.6 * radius), (row - y - 1.5 * radius) / (0.5 * radius)
    ball, shadow = u * u + v * v < 1, s * s + t * t < 1
    light = 0.65 - 0.35 * v
    grain = numpy.frombuffer(engine.bytes(4 * height * width), "<u4").reshape(height, width) % 7 - 3.0
    value = scene.astype(float)
    value[shadow] *= 0.6
    for channel, tone in enumerate((230, 90, 90)):
        value[ball, channel] = tone * light[ball]
    return numpy.clip(value + grain[..., None], 0, 255).astype("uint8")


@functools.lru_cache(1)
def watched(s: Subject) -> Watch:
    height, width = min(s.height, 400), min(s.width, 640)
    top, left = (s.height - height) // 2, (s.width - width) // 2
    scene = s.colour[top : top + height, left : left + width]
    model = lumcv.BackgroundModel(
        height,
        width,
        history=100,
        mixtures=3,
        initial_variance=225,
        least_variance=16,
        most_variance=5 * 225,
        shadow_ratio=0.4,
    )
    history = lumcv.MotionHistory(height, width, duration=40)
    engine = numpy.random.RandomState(5)
    # The empty scene first, for as long as the model needs to know it.
    for number in range(-20, FRAMES):
        frame = frame_of(scene, number, engine)
        if number < 0:
            frame = frame_of(scene, -3 * FRAMES, engine)
        mask = model.apply(frame)
        if number >= 0:
            history.update((mask == 255).astype("uint8"), number + 1)
    return Watch(frame, mask, model.background(), history.image)


section.panel("moving-object")(lambda s: watched(s).frame)
section.panel("motion-history", "MotionHistory(height, width, duration=40).update(silhouette, number)")(
    lambda s: false_colours(scaled(watched(s).history, 15, FRAMES))
)
section.panel("background", "BackgroundModel(height, width, history=100, …).background()")(
    lambda s: watched(s).background
)


@section.panel("foreground", "BackgroundModel(height, width, history=100, …).apply(frame)")
def foreground(s: Subject) -> Picture:
    picture = watched(s).frame // 4
    picture[watched(s).mask != 0] = CYAN
    picture[watched(s).mask == 255] = ORANGE
    return picture
