"""The native library: which of the installed builds is loaded, and how."""

import os
from pathlib import Path
from typing import Any, Iterator

from ._ffi import ffi

#: What the processor must have for a build, the widest vectors first.
LEVELS = {
    "x86-64-v4": {"avx512f", "avx512bw", "avx512cd", "avx512dq", "avx512vl"},
    "x86-64-v3": {"avx2", "bmi1", "bmi2", "fma", "f16c", "movbe"},
    "x86-64": {"ssse3"},
}


def processor_features() -> set[str]:
    """The features that the kernel reports for the processor."""
    try:
        with open("/proc/cpuinfo") as file:
            for line in file:
                if line.startswith("flags"):
                    return set(line.split())
    except OSError:
        pass
    return set()


def levels_of(features: set[str]) -> list[str]:
    """The levels whose builds a processor with these features runs, the best first."""
    found: list[str] = []
    for level in reversed(LEVELS):
        if not LEVELS[level] <= features:
            break
        found.insert(0, level)
    return found


def _folders() -> Iterator[Path]:
    """Where builds lie that belong to this copy of the package, the best for the processor first."""
    package = Path(__file__).resolve().parent
    levels = levels_of(processor_features())
    for level in levels:
        yield package / "native" / level
    # Installed below one prefix: <prefix>/lib/python3/dist-packages/lumcv and <prefix>/lib/<architecture>.
    for prefix in list(package.parents)[3:4]:
        for folder in (prefix / "lib" / "x86_64-linux-gnu", prefix / "lib64", prefix / "lib"):
            for level in levels[:-1]:
                yield folder / "glibc-hwcaps" / level
            yield folder


def _paths() -> Iterator[str]:
    named = os.environ.get("LUMCV_LIBRARY")
    if named:
        yield named
        return
    for folder in _folders():
        yield from (str(path) for path in sorted(folder.glob("liblumcv.so*")))
    # Where the loader looks by itself it also chooses the level.
    yield "liblumcv.so"


def load() -> tuple[Any, str]:
    """The best build that is there, and its path."""
    reasons = []
    for path in _paths():
        try:
            return ffi.dlopen(path), path
        except OSError as reason:
            reasons.append(str(reason))
    raise ImportError("lumcv: no build of the native library can be loaded: " + "; ".join(reasons))


lib, path = load()
