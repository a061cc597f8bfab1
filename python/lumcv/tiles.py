"""Operations on pictures larger than the memory, in tiles of arrays and memory maps.

What lies beyond a tile is read from the picture itself, so the results have the bits of one call on the whole. Tiles run
in as many threads as are asked for; besides the pictures themselves, memory is needed for one tile a thread.
"""

from concurrent.futures import ThreadPoolExecutor
from typing import Any, Callable, Iterator, Optional, Union

import numpy

from ._array import UINT8, Array
from ._edges import edges_of, joined_labels, ridges, seams_of
from ._reduction import reduction_of
from ._tiling import Part, Tiling, part_of, run_part, tiling_of

Tile = Union[int, tuple[int, int]]
_default = (1024, 1024)


def _kept(shape: tuple[int, ...], tile: Tile) -> Iterator[tuple[int, int, int, int]]:
    rows, columns = (tile, tile) if isinstance(tile, int) else tile
    if rows < 1 or columns < 1:
        raise ValueError(f"a tile has one row and one column or more, not {rows} x {columns}")
    for y in range(0, shape[0], rows):
        for x in range(0, shape[1], columns):
            yield y, min(y + rows, shape[0]), x, min(x + columns, shape[1])


def _picture(array: Any) -> Array:
    if not isinstance(array, numpy.ndarray) or array.ndim not in (2, 3):
        raise TypeError("tiles are those of a numpy.ndarray or numpy.memmap of two or three dimensions")
    if 0 in array.shape:
        raise ValueError(f"there are no tiles in an array of the shape {array.shape}")
    return array


def _cut(value: Any, shape: tuple[int, ...], where: tuple[int, int, int, int]) -> Any:
    """The part of an argument that is of the picture's size; another argument as it is."""
    if isinstance(value, numpy.ndarray) and value.ndim >= 2 and value.shape[:2] == shape[:2]:
        return value[where[0] : where[1], where[2] : where[3]]
    return value


def _each(jobs: list[Any], job: Callable[[Any], Any], workers: int) -> list[Any]:
    if workers < 1:
        raise ValueError(f"there is one worker or more, not {workers}")
    if workers == 1:
        return [job(each) for each in jobs]
    with ThreadPoolExecutor(workers) as pool:
        return list(pool.map(job, jobs))


def map(
    operation: Callable[..., Any],
    array: Array,
    *arguments: Any,
    tile: Tile = _default,
    workers: int = 1,
    out: Any = None,
    **keywords: Any,
) -> Any:
    """The result of an operation on an array, tile by tile.

    Parameters
    ----------
    operation : function of this package, functools.partial of one, or spec
        An operation whose result is an image of the picture's size, such as `gaussian`, or `Gaussian(2.0)`.
    array : numpy.ndarray or numpy.memmap
        The picture.
    *arguments, **keywords
        Further arguments of the operation. Arrays of the picture's size are cut into tiles like it.
    tile : int or pair of int
        Rows and columns of a tile.
    workers : int
        Threads that run at once.
    out : array, or tuple of arrays, optional
        Takes the result, such as a memory map; not the picture itself, unless the operation looks at one pixel at a time.

    Returns
    -------
    array, or a tuple of arrays where the operation has several
        With the bits of one call on the whole picture.

    Raises
    ------
    ValueError
        For an operation that takes a picture as a whole, with the reason.

    Examples
    --------
    >>> import lumcv, lumcv.tiles, numpy
    >>> picture = numpy.random.default_rng(1).integers(0, 256, (100, 130), numpy.uint8)
    >>> tiled = lumcv.tiles.map(lumcv.gaussian, picture, sigma=2, tile=(33, 47), workers=2)
    >>> bool((tiled == lumcv.gaussian(picture, sigma=2)).all())
    True
    """
    picture = _picture(array)
    tiling = tiling_of(operation, arguments, keywords)
    parts = [part_of(kept, picture.shape, tiling) for kept in _kept(picture.shape, tile)]

    def run(part: Part) -> Any:
        y0, y1, x0, x1 = part.read
        cut = [_cut(each, picture.shape, part.run) for each in arguments]
        named = {name: _cut(each, picture.shape, part.run) for name, each in keywords.items()}
        return run_part(part, operation, picture[y0:y1, x0:x1], cut, named)

    first = run(parts[0])
    several = isinstance(first, tuple)
    samples = first if several else (first,)
    if out is None:
        out = tuple(numpy.empty((*picture.shape[:2], *each.shape[2:]), each.dtype) for each in samples)
    elif not several:
        out = (out,)
    for result, sample in zip(out, samples):
        if result.shape != (*picture.shape[:2], *sample.shape[2:]) or result.dtype != sample.dtype:
            raise ValueError(
                f"out has {result.dtype} of the shape {result.shape}; the result has {sample.dtype} of "
                f"{(*picture.shape[:2], *sample.shape[2:])}"
            )
        if tiling != Tiling() and numpy.may_share_memory(result, picture):
            raise ValueError("out is the picture itself, of which other tiles are still to be read")

    def store(part: Part, results: tuple[Array, ...]) -> None:
        y0, y1, x0, x1 = part.kept
        for result, tile_result in zip(out, results):
            result[y0:y1, x0:x1] = tile_result

    store(parts[0], samples)
    _each(parts[1:], lambda part: store(part, run(part) if several else (run(part),)), workers)
    return out if several else out[0]


def canny(
    array: Array,
    low: float,
    high: float,
    tile: Tile = _default,
    workers: int = 1,
    out: Optional[Array] = None,
    **keywords: Any,
) -> Array:
    """Canny's edges of an array, tile by tile: edges are followed across the seams between tiles.

    The array is read twice, first for what connects the ridges of neighbouring tiles.

    Parameters
    ----------
    array : numpy.ndarray or numpy.memmap of uint8
        The picture.
    low, high : float
        Ridges of the gradient above `high` are edges, and so are those above `low` that an edge touches.
    tile : int or pair of int
        Rows and columns of a tile.
    workers : int
        Threads that run at once.
    out : array, optional
        Takes the result, such as a memory map; not the picture itself.
    **keywords
        `size`, `norm`, `filter`, `border` and `border_value` of `lumcv.canny`.

    Returns
    -------
    array of uint8
        With the bits of one call on the whole picture.

    Examples
    --------
    >>> import lumcv, lumcv.tiles, numpy
    >>> y, x = numpy.mgrid[:60, :60]
    >>> disc = numpy.where((x - 30) ** 2 + (y - 30) ** 2 < 400, 90, 20).astype(numpy.uint8)
    >>> edges = lumcv.tiles.canny(disc, 30, 120, tile=16)
    >>> bool((edges == lumcv.canny(disc, 30, 120)).all())
    True
    """
    picture = _picture(array)
    tiling = tiling_of(ridges, (low, high), keywords)
    kept = list(_kept(picture.shape, tile))

    def found(where: tuple[int, int, int, int]) -> Any:
        part = part_of(where, picture.shape, tiling)
        y0, y1, x0, x1 = part.read
        return run_part(part, ridges, picture[y0:y1, x0:x1], (low, high), keywords)

    if out is None:
        out = numpy.empty(picture.shape[:2], UINT8)
    elif out.shape != picture.shape[:2] or out.dtype != UINT8 or numpy.may_share_memory(out, picture):
        raise ValueError(f"out has uint8 of the shape {picture.shape[:2]}, and is not the picture itself")
    result = out
    seams = _each(kept, lambda where: seams_of(*found(where)), workers)
    columns = sum(where[0] == 0 for where in kept)
    grid = joined_labels([seams[first : first + columns] for first in range(0, len(seams), columns)])

    def store(job: Any) -> None:
        where, joined = job
        result[where[0] : where[1], where[2] : where[3]] = edges_of(*found(where), joined)

    _each(list(zip(kept, (each for line in grid for each in line))), store, workers)
    return result


def reduce(
    operation: Callable[..., Any],
    array: Array,
    *arguments: Any,
    tile: Tile = _default,
    workers: int = 1,
    **keywords: Any,
) -> Any:
    """A number told by an array, tile by tile.

    Results of uint8 and uint16, extremes, their places and counts are those of one call on the whole, bit by bit. Means,
    deviations and sums of float32 are added up in another order and in double precision, so their last digits may differ.

    Parameters
    ----------
    operation : function
        `mean`, `mean_stddev`, `norm` or `min_max`, or `numpy.count_nonzero`.
    array : numpy.ndarray or numpy.memmap
        The picture.
    *arguments, **keywords
        Further arguments of the operation. Arrays of the picture's size are cut into tiles like it.
    tile : int or pair of int
        Rows and columns of a tile.
    workers : int
        Threads that run at once.

    Returns
    -------
    What the operation returns.

    Examples
    --------
    >>> import lumcv, lumcv.tiles, numpy
    >>> picture = numpy.arange(250, dtype=numpy.uint8).reshape(10, 25)
    >>> lumcv.tiles.reduce(lumcv.min_max, picture, tile=4)
    Extremes(min=0.0, max=249.0, min_at=(0, 0), max_at=(9, 24))
    """
    picture = _picture(array)
    share, combine = reduction_of(operation)

    def run(kept: tuple[int, int, int, int]) -> Any:
        cut = [_cut(each, picture.shape, kept) for each in arguments]
        named = {name: _cut(each, picture.shape, kept) for name, each in keywords.items()}
        return share((kept[0], kept[2]), _cut(picture, picture.shape, kept), *cut, **named)

    return combine(_each(list(_kept(picture.shape, tile)), run, workers))
