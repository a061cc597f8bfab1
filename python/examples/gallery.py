#!/usr/bin/env python3
"""The pictures of the program's gallery, made from Python.

    lumcv gallery -o GALLERY          # the program's own
    gallery.py GALLERY FOLDER         # the same from Python: FOLDER/index.html

Each panel shows the call that made it, and whether its pixels are those of the program's.
"""

import html
import pathlib
import sys
from typing import Any, Callable

import numpy
from PIL import Image

import lumcv

Picture = Any
PANELS: dict[str, tuple[str, Callable[["Subject"], Picture]]] = {}

SCALE = numpy.array([[36, 10, 66], [62, 48, 132], [38, 110, 142], [34, 164, 132], [130, 208, 82], [250, 232, 50]])


class Subject:
    """The picture that all panels start from, and others that the program has drawn."""

    def __init__(self, folder: pathlib.Path) -> None:
        self.folder = folder
        self.picture = self.drawn("picture")
        self.colour = self.picture if self.picture.ndim == 3 else numpy.repeat(self.picture[:, :, None], 3, axis=2)
        weighted = self.colour.astype(numpy.int64) @ numpy.array([19595, 38470, 7471])
        self.grey = ((weighted + 32768) >> 16).astype("uint8") if self.picture.ndim == 3 else self.picture

    def drawn(self, name: str) -> Picture:
        return numpy.asarray(Image.open(self.folder / f"{name}.png"))

    def disc(self, radius: int) -> Picture:
        radius = max(1, radius * self.grey.shape[1] // 960)
        y, x = numpy.mgrid[-radius : radius + 1, -radius : radius + 1]
        return x * x + y * y <= radius * radius + radius


def panel(name: str, call: str) -> Callable[[Callable[[Subject], Picture]], Callable[[Subject], Picture]]:
    def add(draw: Callable[[Subject], Picture]) -> Callable[[Subject], Picture]:
        PANELS[name] = (call, draw)
        return draw

    return add


def shifted(picture: Picture, dx: int, dy: int) -> Picture:
    height, width = picture.shape[:2]
    rows, columns = numpy.clip(numpy.arange(height) - dy, 0, None), numpy.clip(numpy.arange(width) - dx, 0, None)
    return numpy.ascontiguousarray(picture[rows][:, columns])


def scaled(plane: Picture, least: Any = None, largest: Any = None) -> Picture:
    least = float(plane.min()) if least is None else least
    largest = float(plane.max()) if largest is None else largest
    factor = 0.0 if largest == least else 255.0 / (largest - least)
    return numpy.clip((plane.astype(float) - least) * factor + 0.5, 0, 255).astype("uint8")


def false_colours(grey: Picture) -> Picture:
    left = numpy.minimum(grey.astype(int) // 51, 4)
    weight = (grey - left * 51)[..., None]
    return ((SCALE[left] * (51 - weight) + SCALE[left + 1] * weight) // 51).astype("uint8")


def with_contours(plane: Picture) -> Picture:
    picture = false_colours(scaled(plane))
    least, largest = float(plane.min()), float(plane.max())
    level = ((plane.astype(float) - least) / ((largest - least) / 24 if largest > least else 1.0)).astype(int)
    passed = (level[:-1, :-1] != level[:-1, 1:]) | (level[:-1, :-1] != level[1:, :-1])
    picture[:-1, :-1][passed] = (picture[:-1, :-1][passed].astype(int) * 2 // 5).astype("uint8")
    return picture


panel("absolute-difference", "absdiff(picture, moved)")(lambda s: lumcv.absdiff(s.picture, shifted(s.picture, 5, 3)))
panel("integral", "integral(grey, 'float32')")(lambda s: with_contours(lumcv.integral(s.grey, "float32")))
panel("tilted-integral", "tilted_integral(grey, 'float32')")(lambda s: with_contours(lumcv.tilted_integral(s.grey, "float32")))
panel("laplacian", "laplacian(grey, 5)")(lambda s: scaled(lumcv.laplacian(s.grey, 5), -900, 900))
panel("cross-derivative", "sobel(grey, 1, 1, 5)")(lambda s: scaled(lumcv.sobel(s.grey, 1, 1, 5), -500, 500))
panel("low-pass", "lowpass(grey, 5)")(lambda s: lumcv.lowpass(s.grey, 5))
panel("opening", "morph_open(grey, disc)")(lambda s: lumcv.morph_open(s.grey, s.disc(6), border="replicate"))
panel("closing", "morph_close(grey, disc)")(lambda s: lumcv.morph_close(s.grey, s.disc(6), border="replicate"))
panel("morphological-gradient", "morph_gradient(grey, disc)")(lambda s: scaled(lumcv.morph_gradient(s.grey, s.disc(2))))
panel("top-hat", "morph_tophat(grey, disc)")(lambda s: scaled(lumcv.morph_tophat(s.grey, s.disc(6), border="replicate")))
panel("black-hat", "morph_blackhat(grey, disc)")(lambda s: scaled(lumcv.morph_blackhat(s.grey, s.disc(6), border="replicate")))
panel("canny-edges", "canny(grey, 60, 140)")(lambda s: lumcv.canny(s.grey, 60, 140))
panel("smaller-eigenvalue", "min_eigen(grey)")(
    lambda s: false_colours(scaled(numpy.sqrt(numpy.maximum(lumcv.min_eigen(s.grey), 0))))
)
panel("distance-chamfer", "distance(edges)")(lambda s: with_contours(lumcv.distance(s.drawn("distance-edges"))))
panel("distance-exact", "true_distance(edges)")(lambda s: with_contours(lumcv.true_distance(s.drawn("distance-edges"))))

for sigma in (1, 3, 8):
    panel(f"gaussian-{sigma}", f"gaussian(picture, {sigma}, border='mirror')")(
        lambda s, sigma=sigma: lumcv.gaussian(s.colour, sigma, border="mirror")
    )
for name, norm in (("largest", "inf"), ("mean", "l1"), ("root", "l2")):
    panel(f"colour-gradient-{name}", f"gradient_to_gray(steps, {norm!r})")(
        lambda s, norm=norm: false_colours(
            scaled(lumcv.gradient_to_gray(lumcv.absdiff(s.colour, shifted(s.colour, 2, 2)), norm))
        )
    )
for name, method in (("front", "front"), ("isophote", "isophote")):
    panel(f"inpaint-{name}", f"inpaint(picture, scratches, method={method!r})")(
        lambda s, method=method: lumcv.inpaint(
            s.drawn("inpaint-scratched"), (s.drawn("inpaint-scratched") == 255).all(axis=2), 5, method
        )
    )


@panel("row-stage", "separable(grey, sobel_kernel(5, 1), [1], dtype='int16')")
def row_stage(s: Subject) -> Picture:
    return scaled(lumcv.separable(s.grey, lumcv.sobel_kernel(5, 1), [1], dtype="int16", border="mirror"), -400, 400)


@panel("sharpened", "separable(picture, [-1, 6, -1], [-1, 6, -1], divisor=4)")
def sharpened(s: Subject) -> Picture:
    return lumcv.separable(s.colour, [-1, 6, -1], [-1, 6, -1], divisor=4)


@panel("running-average", "accumulate_weighted(frame, average, 0.12)")
def running_average(s: Subject) -> Picture:
    planes = numpy.moveaxis(s.picture.reshape(*s.picture.shape[:2], -1), 2, 0)
    averages = []
    for plane in planes:
        average = plane.astype("float32")
        for frame in range(1, 25):
            moved = shifted(plane, 3 * frame, 0)
            lumcv.accumulate_weighted(moved, average, 0.12)
        averages.append(scaled(average, 0, 255))
    return numpy.stack(averages, axis=2).reshape(s.picture.shape)


@panel("local-deviation", "rect_stddev(sums, squares, (0, 0, 9, 9))")
def local_deviation(s: Subject) -> Picture:
    sums, squares = lumcv.integral(s.grey, squares="float64")
    side = min(9, *s.grey.shape)
    return false_colours(scaled(lumcv.rect_stddev(sums, squares, (0, 0, side, side))))


@panel("reconstruction", "morph_reconstruct(marker, grey)")
def reconstruction(s: Subject) -> Picture:
    height, width = s.grey.shape
    middle = s.grey[height // 4 : height * 3 // 4, width // 4 : width * 3 // 4]
    y, x = numpy.unravel_index(middle.argmax(), middle.shape)
    if s.grey[height // 2, width // 2] == middle.max():
        y, x = height // 2 - height // 4, width // 2 - width // 4
    marker = numpy.zeros_like(s.grey)
    marker[y + height // 4, x + width // 4] = middle[y, x]
    return lumcv.morph_reconstruct(marker, s.grey)


@panel("specks-removed", "dilate(erode(grey > 127))")
def specks_removed(s: Subject) -> Picture:
    bright = (s.grey > 127).astype("uint8") * 255
    cleaned = lumcv.dilate(lumcv.erode(bright))
    return numpy.stack([numpy.where(bright != 0, 255, cleaned).astype("uint8"), cleaned, cleaned], axis=2)


@panel("harris-response", "harris(grey, k=0.04)")
def harris_response(s: Subject) -> Picture:
    response = lumcv.harris(s.grey, 0.04, scale=1e-12)
    return scaled(numpy.copysign(numpy.sqrt(numpy.sqrt(numpy.abs(response))), response), -1, 1)


@panel("distance-error", "true_distance(edges) - distance(edges)")
def distance_error(s: Subject) -> Picture:
    edges = s.drawn("distance-edges")
    return false_colours(scaled(lumcv.absdiff(lumcv.true_distance(edges), lumcv.distance(edges))))


@panel("marched-band", "fast_marching(scratches, radius=20)")
def marched_band(s: Subject) -> Picture:
    return with_contours(lumcv.fast_marching((s.drawn("inpaint-scratched") == 255).all(axis=2), 20))


@panel("inside-a-mask", "mean_stddev(grey, mask=ellipse)")
def inside_a_mask(s: Subject) -> Picture:
    height, width = s.grey.shape
    y, x = numpy.mgrid[:height, :width]
    mask = ((x + 0.5) / width * 2 - 1) ** 2 + ((y + 0.5) / height * 2 - 1) ** 2 < 0.7
    print("inside the mask:", lumcv.mean_stddev(s.grey, mask))
    return numpy.where(mask[:, :, None], s.colour, s.colour // 5)


@panel("lens-corrected", "undistort(picture, focal, centre, -0.28, 0.06)")
def lens_corrected(s: Subject) -> Picture:
    bent = s.drawn("through-a-lens")
    height, width = bent.shape[:2]
    focal = float(numpy.float32(0.6) * numpy.float32(max(width, height)))
    return lumcv.undistort(bent, (focal, focal), ((width - 1) / 2, (height - 1) / 2), -0.28, 0.06)


@panel("labelled-components", "label(grey > mean)")
def labelled_components(s: Subject) -> Picture:
    labels, _ = lumcv.label(s.grey > s.grey.mean())
    colours = false_colours((40 + labels.astype(int) * 97 % 216).astype("uint8"))
    colours[labels == 0] = 0
    return colours


def layers(s: Subject, rate: float) -> Picture:
    sheet = [s.colour]
    while len(sheet) < 8 and min(sheet[-1].shape[:2]) >= 8:
        sheet.append(lumcv.pyramid_down(sheet[-1], rate))
    height = max(s.colour.shape[0], sum(each.shape[0] for each in sheet[1:]))
    width = s.colour.shape[1] + (sheet[1].shape[1] if len(sheet) > 1 else 0)
    result = numpy.zeros((height, width, 3), "uint8")
    result[: s.colour.shape[0], : s.colour.shape[1]] = s.colour
    top = 0
    for each in sheet[1:]:
        result[top : top + each.shape[0], s.colour.shape[1] : s.colour.shape[1] + each.shape[1]] = each
        top += each.shape[0]
    return result


panel("pyramid-of-rate-2", "pyramid(picture)")(lambda s: layers(s, 2.0))
panel("pyramid-of-rate-1-5", "pyramid(picture, rate=1.5)")(lambda s: layers(s, 1.5))

PAGE = """<!doctype html><html lang="en"><meta charset="utf-8"><title>lumCV from Python</title><style>
:root { color-scheme: dark } body { margin: 2rem; background: #0f1116; color: #eceef3; font: 15px/1.5 system-ui, sans-serif }
main { display: grid; grid-template-columns: repeat(auto-fill, minmax(21rem, 1fr)); gap: 1.25rem }
figure { margin: 0; background: #181b23; border-radius: 12px; overflow: hidden } img { display: block; width: 100% }
figcaption { padding: .8rem 1rem } code { color: #a9c7ff } p { margin: 0; color: #98a0b3 }
</style><h1>lumCV from Python</h1><main>FIGURES</main></html>
"""
FIGURE = '<figure><img src="%s.png" alt=""><figcaption><code>lumcv.%s</code><p>%s</p></figcaption></figure>'


def main(program: pathlib.Path, folder: pathlib.Path) -> int:
    """Draws every panel; tells how many differ from the program's."""
    folder.mkdir(parents=True, exist_ok=True)
    subject, figures, different = Subject(program), [], 0
    for name, (call, draw) in PANELS.items():
        picture = draw(subject)
        Image.fromarray(picture).save(folder / f"{name}.png")
        same = numpy.array_equal(picture, subject.drawn(name))
        different += not same
        verdict = "the program's pixels" if same else "other pixels than the program's"
        figures.append(FIGURE % (name, html.escape(call), verdict))
        print(f"{name:28}{verdict}")
    (folder / "index.html").write_text(PAGE.replace("FIGURES", "\n".join(figures)))
    return different


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])) > 0)
