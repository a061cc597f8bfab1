"""Panels of the frame: a picture, the same moved by a few pixels, and their difference."""

import lumcv
from panels.panel import Section
from panels.tones import shifted

section = Section("Frame")

section.panel("picture")(lambda s: s.picture)
section.panel("picture-moved")(lambda s: shifted(s.picture, 5, 3))
section.panel("absolute-difference", "absdiff(picture, moved)")(
    lambda s: lumcv.absdiff(s.picture, shifted(s.picture, 5, 3))
)
