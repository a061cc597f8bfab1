"""Operations on the chunks of dask arrays, on one machine or on a cluster.

The chunks of a picture overlap by what an operation reads beyond a pixel, and each is run with the knowledge of its place,
so any chunking gives the bits of one call on the whole.
"""

import functools
import operator
from typing import Any, Callable

import dask
import dask.array
import numpy
from dask.base import tokenize
from dask.delayed import Delayed
from dask.highlevelgraph import HighLevelGraph

from ._array import UINT8, Array
from ._edges import edges_of, joined_labels, ridges, seams_of
from ._reduction import reduction_of
from ._tiling import Part, changes_arguments, part_of, run_part, tiling_of
from .families.canny import canny as lumcv_canny

Where = tuple[int, int, int, int]


def _picture(array: Any) -> Any:
    if not isinstance(array, dask.array.Array) or array.ndim not in (2, 3):
        raise TypeError("the picture is a dask.array.Array of two or three dimensions; lumcv.tiles takes numpy arrays")
    if any(numpy.isnan(length) for length in array.shape) or 0 in array.shape:
        raise ValueError(f"the picture has a known shape without a 0, not {array.shape}")
    return array.rechunk({2: -1}) if array.ndim == 3 else array


def _starts(chunks: tuple[int, ...]) -> list[int]:
    return [0, *numpy.cumsum(chunks).tolist()]


class _Source:
    """A dask array, of which rectangles are put together from the pieces of chunks."""

    def __init__(self, array: Any, token: str) -> None:
        self.array = array
        self.starts = [_starts(each) for each in array.chunks[:2]]
        self.name = f"lumcv-piece-{token}-{array.name}"
        self.rest = (0,) * (array.ndim - 2)

    def _along(self, axis: int, begin: int, end: int) -> list[tuple[int, slice]]:
        starts = self.starts[axis]
        found = []
        for index, (first, last) in enumerate(zip(starts, starts[1:])):
            if first < end and last > begin:
                found.append((index, slice(max(begin, first) - first, min(end, last) - first)))
        return found

    def rectangle(self, where: Where, graph: dict[Any, Any]) -> list[list[Any]]:
        """Keys of the pieces of a rectangle, row after row; tasks that cut pieces out of chunks enter the graph."""
        grid = []
        for i, rows in self._along(0, where[0], where[1]):
            line = []
            for j, columns in self._along(1, where[2], where[3]):
                chunk = (self.array.name, i, j, *self.rest)
                key = (self.name, i, j, rows.start, rows.stop, columns.start, columns.stop)
                graph[key] = (operator.getitem, chunk, (rows, columns))
                line.append(key)
            grid.append(line)
        return grid


def _joined(grid: list[list[Array]]) -> Array:
    rows = [line[0] if len(line) == 1 else numpy.concatenate(line, axis=1) for line in grid]
    return rows[0] if len(rows) == 1 else numpy.concatenate(rows, axis=0)


def _arguments(
    places: list[Any], grids: list[list[list[Array]]], values: tuple[Any, ...], names: tuple[str, ...]
) -> Any:
    """The arguments of a call, with the pieces of those that are cut put together at their places."""
    filled = list(values)
    for place, grid in zip(places, grids):
        filled[place] = _joined(grid)
    count = len(filled) - len(names)
    return filled[:count], dict(zip(names, filled[count:]))


def _own(argument: Any) -> Any:
    return argument.copy() if isinstance(argument, numpy.ndarray) else argument


def _run(
    part: Part,
    operation: Callable[..., Any],
    grid: list[list[Array]],
    grids: list[list[list[Array]]],
    fixed: Callable[..., Any],
) -> Any:
    arguments, keywords = fixed(grids)
    if changes_arguments(operation):
        # Chunks belong to the engine, which may run a task a second time.
        arguments = [_own(each) for each in arguments]
        keywords = {name: _own(each) for name, each in keywords.items()}
    return run_part(part, operation, _joined(grid), arguments, keywords)


def _tell(
    place: tuple[int, int],
    share: Callable[..., Any],
    grid: list[list[Array]],
    grids: list[list[list[Array]]],
    fixed: Callable[..., Any],
) -> Any:
    arguments, keywords = fixed(grids)
    return share(place, _joined(grid), *arguments, **keywords)


class _Fixed:
    """The arguments that are the same for every chunk; the pieces of all others are filled in."""

    def __init__(self, places: list[int], values: tuple[Any, ...], names: tuple[str, ...]) -> None:
        self.places, self.values, self.names = places, values, names

    def __call__(self, grids: list[list[list[Array]]]) -> Any:
        return _arguments(self.places, grids, self.values, self.names)


class _Call:
    """A call on the chunks of a picture: which arguments are cut, and which are the same for every chunk."""

    def __init__(self, array: Any, arguments: tuple[Any, ...], keywords: dict[str, Any], token: str) -> None:
        self.picture = _picture(array)
        self.main = _Source(self.picture, token)
        values = (*arguments, *keywords.values())
        self.others: list[_Source] = []
        places = []
        for place, value in enumerate(values):
            if isinstance(value, numpy.ndarray) and value.ndim >= 2 and value.shape[:2] == self.picture.shape[:2]:
                value = dask.array.from_array(value, chunks=(*self.picture.chunks[:2], *value.shape[2:]))
            if isinstance(value, dask.array.Array):
                other = _picture(value)
                if other.shape[:2] != self.picture.shape[:2]:
                    raise ValueError(f"an argument has the shape {other.shape}; the picture has {self.picture.shape}")
                self.others.append(_Source(other, token))
                places.append(place)
        kept = tuple(None if place in places else value for place, value in enumerate(values))
        self.fixed = _Fixed(places, kept, tuple(keywords))

    def dependencies(self) -> list[Any]:
        return [self.picture, *(each.array for each in self.others)]

    def chunks(self) -> Any:
        """Index and place of every chunk of the picture."""
        rows, columns = self.main.starts
        for i, (y0, y1) in enumerate(zip(rows, rows[1:])):
            for j, (x0, x1) in enumerate(zip(columns, columns[1:])):
                yield (i, j), (y0, y1, x0, x1)

    def grids(self, where: Where, graph: dict[Any, Any]) -> list[Any]:
        return [each.rectangle(where, graph) for each in self.others]


def _sample(call: _Call, operation: Callable[..., Any], tiling: Any) -> Any:
    """The result for a small picture, which tells types and channels."""
    side = 2 * (max(tiling.reach) + tiling.grow) + 8
    picture, *others = (numpy.zeros((side, side, *each.shape[2:]), each.dtype) for each in call.dependencies())
    arguments, keywords = call.fixed([[[each]] for each in others])
    return operation(picture, *arguments, **keywords)


def map(operation: Callable[..., Any], array: Any, *arguments: Any, **keywords: Any) -> Any:
    """The result of an operation on a dask array, chunk by chunk; nothing is computed yet.

    Parameters
    ----------
    operation : function of this package, functools.partial of one, or spec
        An operation whose result is an image of the picture's size, such as `gaussian`, or `Gaussian(2.0)`.
    array : dask.array.Array
        The picture, in chunks of any sizes.
    *arguments, **keywords
        Further arguments of the operation. Arrays of the picture's size, of dask or of numpy, are cut like it.

    Returns
    -------
    dask.array.Array, or a tuple of them where the operation has several results
        In the picture's chunks, with the bits of one call on the whole picture.

    Raises
    ------
    ValueError
        For an operation that takes a picture as a whole, with the reason.

    Examples
    --------
    >>> import lumcv, lumcv.dask, dask.array, numpy
    >>> picture = numpy.random.default_rng(1).integers(0, 256, (60, 70), numpy.uint8)
    >>> chunked = dask.array.from_array(picture, chunks=(17, 23))
    >>> edges = lumcv.dask.map(lumcv.sobel, chunked)
    >>> bool((edges.compute(scheduler="threads") == lumcv.sobel(picture)).all())
    True
    """
    tiling = tiling_of(operation, arguments, keywords)
    token = tokenize("lumcv.map", operation, array, arguments, keywords)
    call = _Call(array, arguments, keywords, token)
    sample = _sample(call, operation, tiling)
    name = f"lumcv-map-{token}"
    graph: dict[Any, Any] = {}
    for index, kept in call.chunks():
        part = part_of(kept, call.picture.shape, tiling)
        grid = call.main.rectangle(part.read, graph)
        # In a partial function what it carries is left alone by the engine.
        run = functools.partial(_run, part, operation, fixed=call.fixed)
        graph[(name, *index)] = (run, grid, call.grids(part.run, graph))
    several = isinstance(sample, tuple)
    results = []
    for which, each in enumerate(sample if several else (sample,)):
        own = f"{name}-{which}"
        rest = (0,) * (each.ndim - 2)
        tasks = dict(graph)
        for index, _ in call.chunks():
            key = (name, *index)
            tasks[(own, *index, *rest)] = (operator.getitem, key, which) if several else key
        whole = HighLevelGraph.from_collections(own, tasks, dependencies=call.dependencies())
        chunks = (*call.picture.chunks[:2], *((length,) for length in each.shape[2:]))
        results.append(dask.array.Array(whole, own, chunks, dtype=each.dtype))
    return tuple(results) if several else results[0]


def _seams(part: Part, run: Callable[..., Any], grid: list[list[Array]]) -> Any:
    return seams_of(*run_part(part, run, _joined(grid), (), {}))


def _edges(part: Part, run: Callable[..., Any], joined: Array, grid: list[list[Array]]) -> Array:
    return edges_of(run_part(part, run, _joined(grid), (), {}), joined)


def canny(array: Any, low: float, high: float, **keywords: Any) -> Any:
    """Canny's edges of a dask array: edges are followed across the seams between chunks.

    What connects the ridges of neighbouring chunks is computed at once, by the engine that is in use; it is as large as the
    seams are long. The edges themselves are computed when they are asked for, and the picture is read a second time.

    Parameters
    ----------
    array : dask.array.Array of uint8
        The picture, in chunks of any sizes.
    low, high : float
        Ridges of the gradient above `high` are edges, and so are those above `low` that an edge touches.
    **keywords
        `size`, `norm`, `filter`, `border` and `border_value` of `lumcv.canny`.

    Returns
    -------
    dask.array.Array of uint8
        In the picture's chunks, with the bits of one call on the whole picture.

    Examples
    --------
    >>> import dask, lumcv, lumcv.dask, dask.array, numpy
    >>> y, x = numpy.mgrid[:60, :60]
    >>> disc = numpy.where((x - 30) ** 2 + (y - 30) ** 2 < 400, 90, 20).astype(numpy.uint8)
    >>> with dask.config.set(scheduler="threads"):
    ...     edges = lumcv.dask.canny(dask.array.from_array(disc, chunks=17), 30, 120).compute()
    >>> bool((edges == lumcv.canny(disc, 30, 120)).all())
    True
    """
    tiling = tiling_of(ridges, (low, high), keywords)
    token = tokenize("lumcv.canny", array, low, high, keywords)
    call = _Call(array, (), {}, token)
    lumcv_canny(numpy.zeros((8, 8, *call.picture.shape[2:]), call.picture.dtype), low, high, **keywords)
    run = functools.partial(ridges, low=low, high=high, **keywords)
    places = [(index, part_of(kept, call.picture.shape, tiling)) for index, kept in call.chunks()]

    graph: dict[Any, Any] = {}
    name = f"lumcv-seams-{token}"
    for index, part in places:
        graph[(name, *index)] = (functools.partial(_seams, part, run), call.main.rectangle(part.read, graph))
    whole = HighLevelGraph.from_collections(name, graph, dependencies=call.dependencies())
    told = iter(dask.compute(*(Delayed((name, *index), whole, layer=name) for index, _ in places)))
    rows, columns = (len(each) for each in call.picture.chunks[:2])
    joined = joined_labels([[next(told) for _ in range(columns)] for _ in range(rows)])

    graph = {}
    name = f"lumcv-canny-{token}"
    for (i, j), part in places:
        edges = functools.partial(_edges, part, run, joined[i][j])
        graph[(name, i, j)] = (edges, call.main.rectangle(part.read, graph))
    whole = HighLevelGraph.from_collections(name, graph, dependencies=call.dependencies())
    return dask.array.Array(whole, name, call.picture.chunks[:2], dtype=UINT8)


def reduce(operation: Callable[..., Any], array: Any, *arguments: Any, **keywords: Any) -> Any:
    """A number told by a dask array, chunk by chunk; nothing is computed yet.

    Results of uint8 and uint16, extremes, their places and counts are those of one call on the whole, bit by bit. Means,
    deviations and sums of float32 are added up in another order and in double precision, so their last digits may differ.

    Parameters
    ----------
    operation : function
        `mean`, `mean_stddev`, `norm` or `min_max`, or `numpy.count_nonzero`.
    array : dask.array.Array
        The picture, in chunks of any sizes.
    *arguments, **keywords
        Further arguments of the operation. Arrays of the picture's size, of dask or of numpy, are cut like it.

    Returns
    -------
    dask.delayed.Delayed
        Whose `compute` gives what the operation returns.

    Examples
    --------
    >>> import lumcv, lumcv.dask, dask.array, numpy
    >>> picture = dask.array.arange(250, dtype=numpy.uint8, chunks=70).reshape(10, 25)
    >>> lumcv.dask.reduce(lumcv.mean, picture).compute(scheduler="threads")
    124.5
    """
    share, combine = reduction_of(operation)
    token = tokenize("lumcv.reduce", operation, array, arguments, keywords)
    call = _Call(array, arguments, keywords, token)
    name = f"lumcv-share-{token}"
    graph: dict[Any, Any] = {}
    keys = []
    for index, kept in call.chunks():
        tell = functools.partial(_tell, (kept[0], kept[2]), share, fixed=call.fixed)
        graph[(name, *index)] = (tell, call.main.rectangle(kept, graph), call.grids(kept, graph))
        keys.append((name, *index))
    result = f"lumcv-reduce-{token}"
    graph[result] = (_Combine(operation), keys)
    whole = HighLevelGraph.from_collections(result, graph, dependencies=call.dependencies())
    return Delayed(result, whole)


class _Combine:
    """What becomes of the contributions of all chunks."""

    def __init__(self, operation: Callable[..., Any]) -> None:
        self.operation = operation

    def __call__(self, shares: list[Any]) -> Any:
        return reduction_of(self.operation)[1](shares)
