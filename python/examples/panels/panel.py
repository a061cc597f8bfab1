"""What a gallery is made of: panels in sections, and the picture that all of them start from."""

import pathlib
from typing import Any, Callable, NamedTuple

import numpy
from PIL import Image

from panels.tones import colour_of, grey_of

Picture = Any


class Subject:
    """The picture that all panels start from: as it came, in grey and in colour."""

    def __init__(self, path: pathlib.Path) -> None:
        picture = Image.open(path)
        self.picture: Picture = numpy.asarray(picture if picture.mode == "L" else picture.convert("RGB"))
        self.grey = grey_of(self.picture)
        self.colour = colour_of(self.picture)
        self.height, self.width = self.grey.shape


class Drawn(NamedTuple):
    """A panel's picture, and what came out in numbers."""

    picture: Picture
    number: str = ""


class Panel(NamedTuple):
    name: str
    title: str
    call: str
    draw: Callable[[Subject], Drawn]


class Section:
    """Panels of one group of functions."""

    def __init__(self, title: str) -> None:
        self.title = title
        self.panels: list[Panel] = []

    def panel(
        self, name: str, call: str = "", title: str = ""
    ) -> Callable[[Callable[[Subject], Any]], Callable[[Subject], Any]]:
        """Adds a panel. `name` is that of the picture's file in both galleries; the title is made of it unless given."""

        def add(draw: Callable[[Subject], Any]) -> Callable[[Subject], Any]:
            def drawn(subject: Subject) -> Drawn:
                result = draw(subject)
                return result if isinstance(result, Drawn) else Drawn(result)

            self.panels.append(Panel(name, title or name.replace("-", " ").capitalize(), call, drawn))
            return draw

        return add
