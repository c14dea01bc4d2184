"""The way in for users of numpy.random."""

import numpy as np

from tvmathrng._tvmathrng import RandStream
from tvmathrng.bit_generators import CLASSES
from tvmathrng.errors import TvValueError


def default_rng(seed=None, generator="philox4x32_10", item=None):
    """Returns NumPy's Generator on a generator of this library.

    seed        as NumPy's default_rng takes it: see BitGenerator. A RandStream, a bit generator and
                a Generator are taken as they are
    generator   a name of tv.generators(), or another spelling
    item        the number of a work item: its numbers are those of substream item. Needs a seed

    >>> tvmathrng.random.default_rng(7).choice(5, 3).shape
    (3,)
    >>> tvmathrng.random.default_rng(7, item=4).random() == tv.Family(7).rng(4).random()
    True
    """
    drawing = isinstance(seed, (np.random.Generator, np.random.BitGenerator, RandStream))
    if item is not None and (drawing or seed is None):
        raise TvValueError("item goes with a seed: the same seed and item give the same numbers",
                           "TALVOR:python:InvalidSeed")
    if isinstance(seed, np.random.Generator):
        return seed
    if isinstance(seed, RandStream):
        seed = seed.bit_generator()
    if not drawing:
        kind = CLASSES[RandStream(generator).generator]
        seed = kind(seed, substream=0 if item is None else item)
    return np.random.Generator(seed)
