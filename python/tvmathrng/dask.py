"""Dask arrays whose elements do not depend on their chunks, nor on the workers that make them."""

from itertools import product

import dask.array
import numpy as np
from dask.base import tokenize

from tvmathrng.family import Family


def rand(shape, chunks="auto", seed=0, generator="philox4x32_10", item=0):
    """Uniform numbers of (0,1): element i, in C order, is draw i of its stream.

    chunks      as in dask.array; the same numbers come whatever they are
    seed, generator
                of a Family: a generator without substreams has no quick way to draw i, and is refused
    item        the number of the array: arrays of one seed that shall differ have different ones

    >>> tvmathrng.dask.rand((4, 6), chunks=(2, 3), seed=7).compute()[0, :2]
    array([0.99281358, 0.53538592])
    """
    return _array(_Rand(), shape, chunks, seed, generator, item)


def randn(shape, chunks="auto", seed=0, generator="philox4x32_10", item=0):
    """Standard normal numbers by 'Inversion', the method that takes one draw for each."""
    return _array(_Randn(), shape, chunks, seed, generator, item)


def randi(limits, shape, chunks="auto", seed=0, generator="philox4x32_10", item=0):
    """Whole numbers of int64 from 1 to limits, or of a pair of limits, both included."""
    return _array(_Randi(limits), shape, chunks, seed, generator, item)


class _Rand:
    dtype = np.dtype("f8")

    def fill(self, stream, out):
        stream.rand(out=out)

    def __dask_tokenize__(self):
        return type(self).__name__, tuple(vars(self).values())


class _Randn(_Rand):
    def fill(self, stream, out):
        stream.randn(out=out)


class _Randi(_Rand):
    dtype = np.dtype("i8")

    def __init__(self, limits):
        self.limits = limits

    def fill(self, stream, out):
        stream.randi(self.limits, out=out)


def _array(kind, shape, chunks, seed, generator, item):
    family = Family(seed, generator)
    kind.fill(family[item], np.empty(0, kind.dtype))  # limits and items are refused here, not by workers
    shape = tuple(shape) if np.iterable(shape) else (shape,)
    chunks = dask.array.core.normalize_chunks(chunks, shape, dtype=kind.dtype)
    shape = tuple(map(sum, chunks))
    name = "tvmathrng-" + tokenize(kind, family, item, chunks)
    starts = [np.cumsum([0, *sizes]).tolist() for sizes in chunks]
    tasks = {
        (name, *at): (_block, kind, family, item, shape,
                      [s[i] for s, i in zip(starts, at)], [c[i] for c, i in zip(chunks, at)])
        for at in product(*(range(len(sizes)) for sizes in chunks))
    }
    return dask.array.Array(tasks, name, chunks, dtype=kind.dtype)


def _block(kind, family, item, shape, start, size):
    """Returns the elements from `start` on: draws that lie side by side are drawn in one go."""
    block = np.empty(size, kind.dtype)
    if block.size == 0:
        return block
    stream = family[item]
    stream.randn_alg = "Inversion"
    # Axes that the block has whole are part of a run.
    axis = len(shape)
    while axis > 0 and size[axis - 1] == shape[axis - 1]:
        axis -= 1
    axis = max(axis - 1, 0)
    steps = [int(np.prod(shape[i + 1 :], dtype=object)) for i in range(len(shape))]
    first = sum(at * step for at, step in zip(start, steps))
    drawn = 0
    for at in product(*map(range, size[:axis])):
        run = block[(*at, ...)]
        here = first + sum(i * step for i, step in zip(at, steps))
        stream.advance(here - drawn)
        kind.fill(stream, run)
        drawn = here + run.size
    return block
