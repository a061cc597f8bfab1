#!/usr/bin/env python3
"""A picture much larger than the memory: blurred, its edges found and its corners counted, from Zarr to Zarr.

    large_picture.py [--side 20000] [--chunk 2048] [--workers 2] [FOLDER]

FOLDER (by default large-picture) receives picture.zarr, unless it is there already, blurred.zarr and edges.zarr. A picture
of 20,000 x 20,000 pixels takes less than 1 GiB of memory.
"""

import argparse
import pathlib
import resource

import dask
import dask.array
import numpy
import zarr

import lumcv
import lumcv.dask


def draw(folder: pathlib.Path, side: int, chunk: int) -> None:
    """A picture of discs and stripes with grain over all, written chunk by chunk."""
    picture = zarr.open(str(folder / "picture.zarr"), "w", shape=(side, side), chunks=(chunk, chunk), dtype="u1")
    for top in range(0, side, chunk):
        for left in range(0, side, chunk):
            y, x = numpy.mgrid[top : min(top + chunk, side), left : min(left + chunk, side)].astype(numpy.float32)
            tones = 110 + 40 * numpy.sin(x / 90) * numpy.cos(y / 130)
            tones[(x % 400 - 200) ** 2 + (y % 300 - 150) ** 2 < 60**2] = 220
            tones[(x + y) % 700 < 40] = 30
            grain = numpy.random.default_rng([top, left]).integers(-9, 10, tones.shape)
            picture[top : top + chunk, left : left + chunk] = numpy.clip(tones + grain, 0, 255).astype("u1")


def main() -> None:
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("folder", metavar="FOLDER", nargs="?", type=pathlib.Path, default=pathlib.Path("large-picture"))
    options.add_argument("--side", type=int, default=20000)
    options.add_argument("--chunk", type=int, default=2048)
    options.add_argument("--workers", type=int, default=2)
    chosen = options.parse_args()
    chosen.folder.mkdir(parents=True, exist_ok=True)
    place = {name: str(chosen.folder / f"{name}.zarr") for name in ("picture", "blurred", "edges")}
    if not pathlib.Path(place["picture"]).exists():
        draw(chosen.folder, chosen.side, chosen.chunk)

    with dask.config.set(scheduler="threads", num_workers=chosen.workers):
        picture = dask.array.from_zarr(place["picture"])
        # What is stored is read back, so that no chunk waits in memory for later steps.
        lumcv.dask.map(lumcv.gaussian, picture, sigma=2.0, border="mirror").to_zarr(place["blurred"], overwrite=True)
        blurred = dask.array.from_zarr(place["blurred"])
        edges = lumcv.dask.canny(blurred, low=40, high=120)
        edges.to_zarr(place["edges"], overwrite=True)
        marks, _ = lumcv.dask.map(lumcv.fast_marks, blurred, threshold=25)
        corners = lumcv.dask.reduce(numpy.count_nonzero, marks).compute()
        edge_pixels = lumcv.dask.reduce(numpy.count_nonzero, dask.array.from_zarr(place["edges"])).compute()

    print(f"{edge_pixels} edge pixels, {corners} corners")
    print(f"{resource.getrusage(resource.RUSAGE_SELF).ru_maxrss // 1024} MiB of memory at most")


if __name__ == "__main__":
    main()
