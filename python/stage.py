#!/usr/bin/env python3
"""Lays the package out, ready to be imported, tested or packed.

    stage.py FOLDER [BUILD]

FOLDER receives `lumcv`: the modules, and what is generated from the public headers. Where BUILD is given, the directory of the
native build, the package carries its libraries for each level of processor, and FOLDER receives what makes a wheel of it.
"""

import re
import shutil
import sys
from pathlib import Path
from typing import Optional

from declarations import generate

here = Path(__file__).resolve().parent


def version() -> str:
    """The version of the project, which the header tells."""
    header = (here.parent / "include" / "lumcv" / "version.h").read_text()
    return ".".join(re.findall(r"^#define LUMCV_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)", header, re.M))


def stage(folder: Path, build: Optional[Path]) -> None:
    package = folder / "lumcv"
    shutil.rmtree(package, ignore_errors=True)
    shutil.copytree(here / "lumcv", package, ignore=shutil.ignore_patterns("__pycache__"))
    generate(here.parent / "include", package)
    (package / "_version.py").write_text(f'"""The version of the project."""\n\nVERSION = "{version()}"\n')
    if build is None:
        return
    major = version().split(".")[0]
    # In the places and by the names in which they find each other.
    names = (f"liblumcv.so.{major}", f"glibc-hwcaps/*/liblumcv.so.{major}", "liblumcore.so", f"liblumcore.so.{major}")
    for library in (each for name in names for each in build.glob(name)):
        place = package / "native" / library.relative_to(build)
        place.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(library.resolve(strict=True), place)
    shutil.copy(here / "setup.py", folder)
    shutil.copy(here / "pyproject.toml", folder)


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    stage(Path(sys.argv[1]), Path(sys.argv[2]) if len(sys.argv) == 3 else None)
