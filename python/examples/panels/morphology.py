"""Panels of morphology: the compound operators by a disc, reconstruction from a seed, and an image cleaned of specks."""

import numpy

import lumcv
from panels.drawing import Picture
from panels.panel import Drawn, Section, Subject
from panels.tones import scaled

section = Section("Morphology")


def disc(s: Subject, radius: int) -> Picture:
    """As many pixels in a picture 960 pixels wide, and more or less in others."""
    radius = max(1, radius * s.width // 960)
    y, x = numpy.mgrid[-radius : radius + 1, -radius : radius + 1]
    return x * x + y * y <= radius * radius + radius


section.panel("opening", "morph_open(grey, disc)")(lambda s: lumcv.morph_open(s.grey, disc(s, 6), border="replicate"))
section.panel("closing", "morph_close(grey, disc)")(lambda s: lumcv.morph_close(s.grey, disc(s, 6), border="replicate"))
section.panel("morphological-gradient", "morph_gradient(grey, disc)")(
    lambda s: scaled(lumcv.morph_gradient(s.grey, disc(s, 2)))
)
section.panel("top-hat", "morph_tophat(grey, disc)")(
    lambda s: scaled(lumcv.morph_tophat(s.grey, disc(s, 6), border="replicate"))
)
section.panel("black-hat", "morph_blackhat(grey, disc)")(
    lambda s: scaled(lumcv.morph_blackhat(s.grey, disc(s, 6), border="replicate"))
)


@section.panel("reconstruction", "morph_reconstruct(marker, grey)")
def reconstruction(s: Subject) -> Picture:
    middle = s.grey[s.height // 4 : s.height * 3 // 4, s.width // 4 : s.width * 3 // 4]
    y, x = numpy.unravel_index(middle.argmax(), middle.shape)
    if s.grey[s.height // 2, s.width // 2] == middle.max():
        y, x = s.height // 2 - s.height // 4, s.width // 2 - s.width // 4
    marker = numpy.zeros_like(s.grey)
    marker[y + s.height // 4, x + s.width // 4] = middle[y, x]
    return lumcv.morph_reconstruct(marker, s.grey)


@section.panel("specks-removed", "dilate(erode(grey > 127))")
def specks_removed(s: Subject) -> Drawn:
    bright = (s.grey > 127).astype("uint8") * 255
    cleaned = lumcv.dilate(lumcv.erode(bright))
    picture = numpy.stack([numpy.where(bright != 0, 255, cleaned).astype("uint8"), cleaned, cleaned], axis=2)
    return Drawn(picture, f"{numpy.count_nonzero(bright > cleaned)} pixels go")
