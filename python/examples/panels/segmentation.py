"""Panels of segmentation: regions grown from seeds, filled, labelled, and removed where they are too small."""

import math

import numpy

import lumcv
from panels.drawing import BLACK, LIME, MAGENTA, ORANGE, Picture, Point, draw_box, draw_cross, rounded, stacked
from panels.panel import Drawn, Section, Subject
from panels.tones import false_colours, scaled

section = Section("Segmentation")

SEEDS = 120


def window_sums(plane: Picture, radius: int) -> Picture:
    """The sums of the squares around each pixel, edges repeated."""
    height, width = plane.shape
    wide = numpy.pad(plane.astype(int), radius, mode="edge")
    side = 2 * radius + 1
    return sum(wide[y : y + height, x : x + width] for y in range(side) for x in range(side))


def gradient_of(colour: Picture) -> Picture:
    """How strongly a colour picture changes at each pixel, averaged over its neighbours."""
    wide = numpy.pad(colour.astype(int), ((1, 1), (1, 1), (0, 0)), mode="edge")
    steps = abs(wide[1:-1, 2:] - wide[1:-1, :-2]) + abs(wide[2:, 1:-1] - wide[:-2, 1:-1])
    sharp = numpy.minimum(steps.max(axis=2), 255)
    return (window_sums(sharp, 1) // 9).astype("uint8")


def spread_seeds(relief: Picture, count: int) -> list[Point]:
    """Places spread over the relief in rows of parts that are about square, each where it is lowest in its part."""
    height, width = relief.shape
    side = math.sqrt(width * height / count)
    fewest = (count + width - 1) // width
    rows = min(max(rounded(height / side), fewest, 1), height, count)
    seeds = []
    for row in range(rows):
        top, bottom = height * row // rows, height * (row + 1) // rows
        columns = count * (row + 1) // rows - count * row // rows
        for column in range(columns):
            left, right = width * column // columns, width * (column + 1) // columns
            part = relief[top:bottom, left:right]
            y, x = part.shape[0] // 2, part.shape[1] // 2
            if part.size and part.min() < part[y, x]:
                y, x = (int(place) for place in numpy.unravel_index(part.argmin(), part.shape))
            seeds.append((left + x, top + y))
    return seeds


def markers_at(seeds: list[Point], shape: tuple[int, ...]) -> Picture:
    """A label at each seed, from 1 up."""
    markers = numpy.zeros(shape, "uint8")
    for label, (x, y) in enumerate(seeds, 1):
        markers[y, x] = label
    return markers


@section.panel("watershed-regions", "watershed(relief, markers, boundaries=4)")
def watershed_regions(s: Subject) -> Picture:
    relief = gradient_of(s.colour)
    seeds = spread_seeds(relief, SEEDS)
    picture = s.colour.copy()
    picture[lumcv.watershed(relief, markers_at(seeds, relief.shape), boundaries=4) == 255] = LIME
    for seed in seeds:
        draw_cross(picture, seed, ORANGE, max(s.width // 160, 3))
    return picture


@section.panel("gradient-regions", "segment_gradient(picture, markers, boundaries=4)")
def gradient_regions(s: Subject) -> Picture:
    seeds = spread_seeds(gradient_of(s.colour), SEEDS)
    regions = lumcv.segment_gradient(s.colour, markers_at(seeds, s.grey.shape), boundaries=4)
    # Each region in its mean colour, boundaries dark.
    regions[regions > SEEDS] = 0
    pixels = numpy.maximum(numpy.bincount(regions.ravel(), minlength=SEEDS + 1), 1)
    means = [numpy.bincount(regions.ravel(), s.colour[..., c].ravel(), SEEDS + 1) // pixels for c in range(3)]
    colours = numpy.stack(means, axis=1).astype("uint8")
    colours[0] = 0
    return colours[regions]


@section.panel("filled-region", "flood_fill(picture, seed, magenta, delta=45, connectivity=8)")
def filled_region(s: Subject) -> Drawn:
    seed = s.width // 2, s.height // 3
    filled = lumcv.flood_fill(s.colour, seed, MAGENTA, delta=45, connectivity=8)
    x, y, width, height = filled.rect
    draw_box(filled.image, x, y, width, height, LIME, max(s.width // 400, 2))
    draw_cross(filled.image, seed, BLACK, max(s.width // 100, 6), 3)
    return Drawn(filled.image, f"{filled.area} pixels in {width} x {height}")


@section.panel("labelled-components", "label(grey > mean)")
def labelled_components(s: Subject) -> Drawn:
    labels, count = lumcv.label(s.grey > s.grey.mean())
    colours = false_colours((40 + labels.astype(int) * 97 % 216).astype("uint8"))
    colours[labels == 0] = 0
    return Drawn(colours, f"{count} components brighter than the mean")


def noisy_depth(grey: Picture) -> Picture:
    """The picture's tones as depths, smooth but for wrong values in small groups, as matching of two views leaves them."""
    depth = (16 + window_sums(grey, 2) * 3 // 5).astype("int16")
    height, width = grey.shape
    state = 1

    def following(limit: int) -> int:
        nonlocal state
        state = (state * 1664525 + 1013904223) % 2**32
        return (state >> 8) % limit

    for _ in range(width * height // 900):
        x, y = following(width), following(height)
        wrong = 16 + following(3800)
        right, bottom = x + 1 + following(6), y + 1 + following(6)
        depth[y:bottom, x:right] = wrong
    return depth


@section.panel("speckles-removed", "mark_speckles(depth, 0, 40, 640)")
def speckles_removed(s: Subject) -> Drawn:
    noisy = noisy_depth(s.grey)
    cleaned = lumcv.mark_speckles(noisy, 0, 40, 640)
    above, below = (false_colours(scaled(each, 0, 3840)) for each in (noisy, cleaned))
    return Drawn(stacked(above, below), f"{numpy.count_nonzero(cleaned == 0)} pixels removed")
