"""Streams of work items."""

import numpy as np

from tvmathrng._tvmathrng import RandStream
from tvmathrng.bit_generators import HAS_SUBSTREAMS
from tvmathrng.errors import TvTypeError, TvValueError


class Family:
    """Family(seed=0, generator='philox4x32_10')

    The streams of numbered work items, two constants: item k has the same numbers whoever works on
    it, in whichever process and order. Never changes; equal ones are alike to dictionaries, pickles
    and Dask.

    seed        that of RandStream; None for one that the operating system chooses, which the
                attribute seed has then
    generator   one with substreams, in any spelling

    >>> f = tv.Family(42)
    >>> f[3].rand() == tv.RandStream('philox', seed=42, substream=3).rand()
    True
    >>> f
    Family(42, 'philox4x32_10')
    """

    __slots__ = {"seed": "The seed, a whole number below 2^32.", "generator": "The generator's name."}
    __iter__ = None  # there are 2^51 items and more

    def __init__(self, seed=0, generator="philox4x32_10"):
        if hasattr(self, "seed"):
            raise TvTypeError("a Family never changes; make another one", "TALVOR:python:Frozen")
        first = RandStream(generator, "entropy" if seed is None else seed)
        if not HAS_SUBSTREAMS[first.generator]:
            able = ", ".join(name for name, has in HAS_SUBSTREAMS.items() if has)
            raise TvValueError(f"{first.generator} has no substreams for work items; these have: {able}",
                               "TALVOR:python:NoSubstreams")
        object.__setattr__(self, "seed", first.seed)
        object.__setattr__(self, "generator", first.generator)

    def __getitem__(self, k):
        """The stream of work item k, from 0, at its start: a new RandStream."""
        return RandStream(self.generator, self.seed, substream=k)

    def rng(self, k):
        """Returns the numpy.random.Generator of work item k, from 0, at its start.

        >>> tv.Family(42).rng(3).random() == tv.Family(42)[3].rand()
        True
        """
        return np.random.Generator(self[k].bit_generator())

    def __setattr__(self, name, value):
        raise TvTypeError("a Family never changes; make another one", "TALVOR:python:Frozen")

    def __delattr__(self, name):
        self.__setattr__(name, None)

    def __eq__(self, other):
        if not isinstance(other, Family):
            return NotImplemented
        return (self.seed, self.generator) == (other.seed, other.generator)

    def __hash__(self):
        return hash((self.seed, self.generator))

    def __repr__(self):
        return f"Family({self.seed}, '{self.generator}')"

    def __reduce__(self):
        return Family, (self.seed, self.generator)

    def __dask_tokenize__(self):
        return "tvmathrng.Family", self.seed, self.generator


Family.__module__ = "tvmathrng"
