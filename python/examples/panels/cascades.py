"""The panel of the Haar cascades: what the cascade of bright discs finds."""

import json
import pathlib

import numpy

import lumcv
from panels.drawing import LIME, WHITE, draw_box, draw_label, draw_notice, label_scale, rounded
from panels.panel import Drawn, Section, Subject
from panels.tones import shrunk

section = Section("Haar cascades")

CASCADE = pathlib.Path(__file__).parents[3] / "share/cascades/bright-disc.json"
SCALE_STEP = 1.15


def accepted_windows(s: Subject, cascade: lumcv.HaarCascade) -> numpy.ndarray:
    """Rows (x, y, width, height) in pixels of the picture, of all sizes."""
    found = [numpy.empty((0, 4))]
    scale = 1.0
    while (height := int(s.height / scale)) >= cascade.window[0] and (width := int(s.width / scale)) >= cascade.window[
        1
    ]:
        places = cascade.windows(s.grey if scale == 1 else shrunk(s.grey, width, height))
        sides = numpy.broadcast_to([cascade.window[1], cascade.window[0]], places.shape)
        found.append(numpy.concatenate([places, sides], axis=1) * scale)
        scale *= SCALE_STEP
    return numpy.concatenate(found)


def overlaps(window: numpy.ndarray, others: numpy.ndarray) -> numpy.ndarray:
    """The share of what two windows cover together that both cover."""
    shared = numpy.minimum(window[:2] + window[2:], others[:, :2] + others[:, 2:])
    shared = numpy.maximum(shared - numpy.maximum(window[:2], others[:, :2]), 0).prod(axis=1)
    return shared / (window[2] * window[3] + others[:, 2] * others[:, 3] - shared)


def groups_of(windows: numpy.ndarray) -> list[numpy.ndarray]:
    """Windows that overlap by more than a half, directly or through others."""
    left = numpy.ones(len(windows), bool)
    groups = []
    for first in range(len(windows)):
        if not left[first]:
            continue
        left[first] = False
        group, reached = [first], [first]
        while reached:
            near = numpy.flatnonzero(left)
            near = near[overlaps(windows[reached.pop()], windows[near]) > 0.5]
            left[near] = False
            group.extend(near.tolist())
            reached.extend(near.tolist())
        groups.append(windows[sorted(group)])
    return groups


def centre_within(inner: numpy.ndarray, outer: numpy.ndarray) -> bool:
    centre = inner[:2] + inner[2:] / 2
    return bool((centre > outer[:2]).all() and (centre < outer[:2] + outer[2:]).all())


@section.panel("bright-discs", "HaarCascade.load('bright-disc.json').windows(grey)")
def bright_discs(s: Subject) -> Drawn:
    record = json.loads(CASCADE.read_text())
    cascade = lumcv.HaarCascade.load(CASCADE)
    groups = [group for group in groups_of(accepted_windows(s, cascade)) if len(group) >= record["leastHits"]]
    kept: list[numpy.ndarray] = []
    boxes = []
    for group in sorted(groups, key=len, reverse=True):
        # One after the other, as the program adds them.
        mean = numpy.add.accumulate(group)[-1] / len(group)
        if any(centre_within(mean, other) or centre_within(other, mean) for other in kept):
            continue
        kept.append(mean)
        across, down = mean[2] / record["window"][0], mean[3] / record["window"][1]
        x, y, width, height = record["object"]
        place = rounded(mean[0] + x * across), rounded(mean[1] + y * down)
        boxes.append((*place, rounded(width * across), rounded(height * down), len(group)))
    picture = s.colour.copy()
    for x, y, width, height, hits in sorted(boxes, key=lambda box: (box[1], box[0])):
        draw_box(picture, x, y, width, height, LIME, max(1, width // 24))
        draw_label(picture, x, y + height + 2, str(hits), WHITE, max(1, label_scale(picture) - 1))
    if not boxes:
        draw_notice(picture, "no disc found")
    return Drawn(picture, f"discs found: {len(boxes)}")
