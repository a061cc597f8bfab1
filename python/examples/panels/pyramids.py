"""Panels of the pyramids: the layers of a picture on one sheet."""

import numpy

import lumcv
from panels.panel import Drawn, Section, Subject

section = Section("Pyramids")


def layers(s: Subject, rate: float) -> Drawn:
    """The picture at the left, and its smaller layers one below the other."""
    sheet = [s.colour]
    while len(sheet) < 8 and min(sheet[-1].shape[:2]) >= 8:
        sheet.append(lumcv.pyramid_down(sheet[-1], rate))
    height = max(s.height, sum(each.shape[0] for each in sheet[1:]))
    width = s.width + (sheet[1].shape[1] if len(sheet) > 1 else 0)
    result = numpy.zeros((height, width, 3), "uint8")
    result[: s.height, : s.width] = s.colour
    top = 0
    for each in sheet[1:]:
        result[top : top + each.shape[0], s.width : s.width + each.shape[1]] = each
        top += each.shape[0]
    return Drawn(result, f"{len(sheet)} layers, the smallest of {sheet[-1].shape[1]} x {sheet[-1].shape[0]}")


section.panel("pyramid-of-rate-2", "pyramid_down(picture)")(lambda s: layers(s, 2.0))
section.panel("pyramid-of-rate-1-5", "pyramid_down(picture, rate=1.5)", "Pyramid of rate 1.5")(lambda s: layers(s, 1.5))
