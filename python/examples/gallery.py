#!/usr/bin/env python3
"""The pictures of the program's gallery, made from Python.

    lumcv gallery -o GALLERY          # the program's own
    gallery.py GALLERY FOLDER         # the same from Python: FOLDER/index.html

The picture that all panels start from is GALLERY's. Each panel shows the call that made it, and whether its pixels are
those of the program's. The exit status is 1 where one has others.
"""

import html
import pathlib
import sys

import numpy
from PIL import Image

import lumcv
from panels import SECTIONS
from panels.panel import Drawn, Panel, Section, Subject

STYLE = """
:root { color-scheme: light dark; --ground: #f6f6f3; --card: #fff; --edge: #dcdcd6; --ink: #1b1d22; --quiet: #5d6470;
  --accent: #9a4a06; --code: #1d4f91; --mat: #e9e9e4; }
@media (prefers-color-scheme: dark) {
  :root { --ground: #0f1116; --card: #181b23; --edge: #262b37; --ink: #eceef3; --quiet: #98a0b3; --accent: #f6b26b;
    --code: #a9c7ff; --mat: #08090c; }
}
* { box-sizing: border-box; }
body { margin: 0; padding: 1.6rem clamp(.9rem, 4vw, 4rem) 2.5rem; background: var(--ground); color: var(--ink);
  font: 15px/1.5 system-ui, "Segoe UI", "DejaVu Sans", sans-serif; }
h1 { margin: 0; font-size: 1.9rem; font-weight: 650; }
h2 { margin: 2rem 0 .9rem; font-size: 1.15rem; font-weight: 600; color: var(--accent); }
h3 { margin: 0; font-size: 1rem; font-weight: 600; }
p { margin: 0; color: var(--quiet); font-size: .9rem; }
.panels { display: grid; grid-template-columns: minmax(0, 1fr); gap: 1.25rem; }
@media (min-width: 700px) { .panels { grid-template-columns: repeat(var(--medium), minmax(0, 1fr)); } }
@media (min-width: 1300px) { .panels { grid-template-columns: repeat(var(--wide), minmax(0, 1fr)); } }
article { display: flex; flex-direction: column; min-width: 0; background: var(--card); border: 1px solid var(--edge);
  border-radius: 12px; overflow: hidden; }
article > a { display: block; background: var(--mat); }
img { display: block; width: 100%; height: auto; max-height: 30rem; object-fit: contain; }
article > div { padding: .8rem 1rem 1rem; }
code { color: var(--code); font: 13px/1.6 ui-monospace, "DejaVu Sans Mono", monospace; overflow-wrap: anywhere; }
.other { color: #c62828; font-weight: 600; }
@media (min-width: 700px) {
  .alone article { display: grid; grid-template-columns: 1fr minmax(16rem, 1fr); align-items: center; }
}
"""
PAGE = """<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<link rel="icon" href="data:,">
<title>lumCV from Python</title>
<style>{style}</style>
</head>
<body>
<h1>lumCV from Python</h1>
<p>{summary}</p>
{sections}
</body>
</html>
"""
SAME, OTHER = "the program's pixels", "other pixels than the program's"


def article(panel: Panel, drawn: Drawn, same: bool) -> str:
    height, width = drawn.picture.shape[:2]
    title = html.escape(panel.title)
    lines = [
        f'<article>\n<a href="{panel.name}.png"><img src="{panel.name}.png" alt="{title}" width="{width}" '
        f'height="{height}" loading="lazy"></a>\n<div><h3>{title}</h3>'
    ]
    if panel.call:
        lines.append(f"<code>lumcv.{html.escape(panel.call)}</code>")
    if drawn.number:
        lines.append(f"<p>{html.escape(drawn.number)}</p>")
    if not same:
        lines.append(f'<p class="other">{OTHER}</p>')
    return "\n".join(lines) + "</div>\n</article>"


def columns_for(panels: int, most: int) -> int:
    """How many columns show so many panels with the fewest gaps in the last row: `most`, one less, or two."""

    def filled(columns: int) -> float:
        return (panels % columns or columns) / columns

    if panels < most:
        return panels
    best = max(most, most - 1, key=filled)
    return best if filled(best) >= 0.5 else 2


def section_of(section: Section, articles: list[str]) -> str:
    count, cards = len(articles), "\n".join(articles)
    return (
        f'<section>\n<h2>{html.escape(section.title)}</h2>\n<div class="panels{" alone" if count == 1 else ""}" '
        f'style="--wide: {columns_for(count, 4)}; --medium: {columns_for(count, 3)}">\n{cards}\n</div>\n</section>'
    )


def main(program: pathlib.Path, folder: pathlib.Path) -> int:
    """Draws every panel; tells how many differ from the program's."""
    folder.mkdir(parents=True, exist_ok=True)
    subject = Subject(program / "picture.png")
    sections, total, different = [], 0, 0
    for section in SECTIONS:
        articles = []
        for panel in section.panels:
            drawn = panel.draw(subject)
            Image.fromarray(drawn.picture).save(folder / f"{panel.name}.png", compress_level=3)
            same = numpy.array_equal(drawn.picture, numpy.asarray(Image.open(program / f"{panel.name}.png")))
            articles.append(article(panel, drawn, same))
            total += 1
            different += not same
            print(f"{panel.name:28}{SAME if same else OTHER}")
        sections.append(section_of(section, articles))
    summary = (
        f"{total} pictures drawn by lumcv {lumcv.__version__} from Python, {total - different} of them with the pixels "
    )
    summary += "of those that the program draws."
    (folder / "index.html").write_text(PAGE.format(style=STYLE, summary=summary, sections="\n".join(sections)))
    return different


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])) > 0)
