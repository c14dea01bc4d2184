"""Random numbers that are the same on every machine: streams, substreams, NumPy arrays.

>>> import tvmathrng as tv
>>> tv.RandStream('philox', seed=7).rand(3, 4).shape
(3, 4)
"""

from tvmathrng.errors import (
    TvAttributeError,
    TvError,
    TvMemoryError,
    TvThreadError,
    TvTypeError,
    TvValueError,
)
from tvmathrng.parameters import Parameters
from tvmathrng._tvmathrng import (
    RandStream,
    __version__,
    generators,
    global_stream,
    rand,
    randi,
    randn,
    randperm,
    set_global_stream,
)
from tvmathrng import random
from tvmathrng.bit_generators import CLASSES as _CLASSES, BitGenerator
from tvmathrng.family import Family
from tvmathrng.numpy_names import point_to_numpy as _point_to_numpy

_point_to_numpy(RandStream)

globals().update({kind.__name__: kind for kind in _CLASSES.values()})


def streams(generator, num_streams, seed=0, **settings):
    """Returns all num_streams streams of a seed, which do not overlap, as a list.

    settings are those of RandStream.

    >>> arrivals, service = streams('combRecursive', 2, seed=42)
    >>> service.stream_index
    1
    """
    first = RandStream(generator, seed, num_streams=num_streams, **settings)
    return [first] + [
        RandStream(generator, first.seed, stream_index=i, num_streams=num_streams, **settings)
        for i in range(1, num_streams)
    ]


__all__ = [
    "BitGenerator",
    "Family",
    "Parameters",
    "RandStream",
    "TvAttributeError",
    "TvError",
    "TvMemoryError",
    "TvThreadError",
    "TvTypeError",
    "TvValueError",
    "generators",
    "global_stream",
    "rand",
    "randi",
    "randn",
    "randperm",
    "set_global_stream",
    "streams",
    *(kind.__name__ for kind in _CLASSES.values()),
]
