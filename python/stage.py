#!/usr/bin/env python3
"""Lays the package out, ready to be imported, tested or packed.

    stage.py FOLDER [LEVEL=LIBRARIES...]

FOLDER receives `lumcv`: the modules, what is generated from the public headers and, for each LEVEL (x86-64, x86-64-v3,
x86-64-v4), the libraries of the directory LIBRARIES. Where there are such, FOLDER also receives what makes a wheel of it.
"""

import re
import shutil
import sys
from pathlib import Path

from declarations import generate

here = Path(__file__).resolve().parent


def stage(folder: Path, builds: dict[str, Path]) -> None:
    package = folder / "lumcv"
    shutil.rmtree(package, ignore_errors=True)
    shutil.copytree(here / "lumcv", package, ignore=shutil.ignore_patterns("__pycache__"))
    generate(here.parent / "include", package)
    for level, libraries in builds.items():
        native = package / "native" / level
        native.mkdir(parents=True)
        for name in ("liblumcv", "liblumcore"):
            # Under the name by which the loader asks for it, which has the first number of the version.
            library = libraries / f"{name}.so.{version().split('.')[0]}"
            shutil.copyfile(library.resolve(strict=True), native / library.name)
    if builds:
        shutil.copy(here / "setup.py", folder)
        shutil.copy(here / "pyproject.toml", folder)
        (folder / "VERSION").write_text(version())


def version() -> str:
    """The version of the project, which is in its header."""
    header = (here.parent / "include" / "lumcv" / "version.h").read_text()
    return ".".join(re.findall(r"^#define LUMCV_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)", header, re.M))


if __name__ == "__main__":
    if len(sys.argv) < 2 or not all("=" in each for each in sys.argv[2:]):
        sys.exit(__doc__)
    stage(Path(sys.argv[1]), {level: Path(path) for level, path in (each.split("=", 1) for each in sys.argv[2:])})
