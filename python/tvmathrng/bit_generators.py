"""Bit generators for NumPy: one class for each generator of the library."""

import operator
from collections.abc import Mapping

import numpy as np
from numpy.random import SeedSequence
from numpy.random.bit_generator import ISeedSequence, ISpawnableSeedSequence

from tvmathrng import _tvmathrng
from tvmathrng.class_names import class_name
from tvmathrng.errors import TvTypeError, TvValueError

_ONE_WORD = 2**32
_TWISTER = "mt19937ar"  # is seeded by all words of its state


class BitGenerator(np.random.BitGenerator):
    """The base of the bit generators of tvmathrng, whose classes stand beside it: tv.Philox4x32,
    tv.MT19937ar and so on, one for each generator.

    seed        a whole number below 2^32: that of RandStream, and the same numbers; None (by the
                operating system), a larger number, an array or a SeedSequence: by SeedSequence
    stream, num_streams, substream
                the place in the family, as in RandStream

    A double of NumPy's is one draw, 32 random bits are the leading bits of one draw, 64 bits those
    of two. The attribute stream is the RandStream behind it, which may be drawn from as well. While
    a thread holds the lock, other threads wait for it or, if they ask the stream itself, are
    refused.

    >>> g = np.random.Generator(tv.Philox4x32(7))
    >>> g.random() == tv.RandStream('philox', seed=7).rand()
    True
    >>> g.gamma(2, size=10).shape
    (10,)
    """

    generator = ""

    def __init__(self, seed=None, *, stream=0, num_streams=1, substream=0):
        if not self.generator:
            names = ", ".join(f"tv.{kind.__name__}" for kind in CLASSES.values())
            raise TvTypeError(f"BitGenerator is the base of {names}; make one of these",
                              "TALVOR:python:NoGenerator")
        self._begin(*_start(self.generator, seed, stream, num_streams, substream))

    def _begin(self, seed_seq, stream):
        held = _tvmathrng.held(self.capsule)
        if held:
            # Generators of NumPy hold on to the stream that there is: it becomes the new one.
            held[0].restore(stream.snapshot())
            stream = held[0]
        super().__init__(seed_seq)
        _tvmathrng.attach(self.capsule, stream)

    def _held(self):
        held = _tvmathrng.held(self.capsule)
        if not held:
            raise TvTypeError(f"this {type(self).__name__} was made without calling its __init__",
                              "TALVOR:python:NotInitialised")
        return held

    @property
    def stream(self):
        """The RandStream behind it."""
        return self._held()[0]

    @property
    def lock(self):
        """What NumPy holds while it draws. The thread that holds it may draw, and take it again."""
        return self._held()[1]

    @property
    def seed_seq(self):
        """The SeedSequence that spawn() asks for seeds."""
        return self._seed_seq

    @property
    def state(self):
        """The name of the class, and the stream's snapshot. Setting it restores the stream."""
        return {"bit_generator": type(self).__name__, "state": self.stream.snapshot()}

    @state.setter
    def state(self, state):
        name = type(self).__name__
        if not isinstance(state, Mapping):
            raise TvTypeError(f"a state is a dictionary, not {type(state).__name__}",
                              "TALVOR:python:InvalidState")
        if state.get("bit_generator") != name or "state" not in state:
            raise TvValueError(f"a state of {name} has 'bit_generator', which is '{name}', and 'state'",
                               "TALVOR:python:InvalidState")
        self.stream.restore(state["state"])

    def random_raw(self, size=None, output=True):
        """64 random bits, or an array of uint64 of them; None when they are not wanted."""
        with self.lock:
            return super().random_raw(size, output)

    def advance(self, delta):
        """Passes over delta draws, any number below 2^64. Returns the bit generator.

        >>> tv.Philox4x32(7).advance(2).random_raw() == tv.Philox4x32(7).random_raw(2)[1]
        True
        """
        self.stream.advance(delta)
        return self

    def jumped(self, jumps=1):
        """Returns a new bit generator at the start of the next substream, or of the one jumps on.

        Errors: a generator without substreams has none to go to.

        >>> tv.Philox4x32(7).jumped(3).stream.substream
        3
        """
        stream = self.stream
        return of_stream(stream.at_substream(stream.substream + jumps), type(self))

    def spawn(self, n_children):
        """Returns n_children new bit generators of the same class, seeded by SeedSequence.spawn().

        >>> one, other = tv.Philox4x32(7).spawn(2)
        """
        if not isinstance(self._seed_seq, ISpawnableSeedSequence):
            raise TvTypeError(f"{type(self._seed_seq).__name__} has no spawn()",
                              "TALVOR:python:NoSpawning")
        return [type(self)(child) for child in self._seed_seq.spawn(n_children)]

    def __getstate__(self):
        return self.state

    def __setstate__(self, state):
        self.state = state

    def __reduce__(self):
        return type(self), (self._seed_seq,), self.state


def of_stream(stream, kind=None):
    """Returns the bit generator that draws from a stream: RandStream.bit_generator()."""
    kind = kind or CLASSES[stream.generator]
    bits = kind.__new__(kind)
    bits._begin(_sequence_of(stream), stream)
    return bits


def _sequence_of(stream):
    """What a stream's bit generator spawns from: other places in a family have other children."""
    place = (stream.stream_index, stream.substream)
    if place == (0, 0):
        return SeedSequence(stream.seed)
    halves = [half for number in place for half in (number % _ONE_WORD, number // _ONE_WORD)]
    return SeedSequence([stream.seed, *halves])


def _start(generator, seed, stream_index, num_streams, substream):
    """Returns the SeedSequence and the stream that the arguments of __init__ stand for."""
    number = _seed_number(seed)
    if number is not None:
        stream = _tvmathrng.RandStream(generator, number, stream_index=stream_index,
                                       num_streams=num_streams, substream=substream)
        return _sequence_of(stream), stream
    if (stream_index, num_streams) != (0, 1):
        raise TvValueError("stream and num_streams go with a seed that is a whole number below 2^32;"
                           " this seed chooses a stream itself", "TALVOR:python:InvalidSeed")
    try:
        seed_seq = seed if isinstance(seed, ISeedSequence) else SeedSequence(seed)
    except (TypeError, ValueError) as error:
        kind = TvTypeError if isinstance(error, TypeError) else TvValueError
        raise kind(f"{seed!r} is no seed: {error}", "TALVOR:python:InvalidSeed") from None
    return seed_seq, _seeded_stream(generator, seed_seq, substream)


def _seed_number(seed):
    """Returns a seed of RandStream as it is, alone in an array too; None for all others."""
    if isinstance(seed, (list, tuple, np.ndarray)) and np.shape(seed) == (1,):
        seed = seed[0]
    try:
        number = operator.index(seed)
    except TypeError:
        return None
    return number if 0 <= number < _ONE_WORD else None


def _seeded_stream(generator, seed_seq, substream):
    if generator == _TWISTER:
        stream = _tvmathrng.RandStream(generator, substream=substream)
        words = seed_seq.generate_state(624)
        words[0] = 2**31  # one bit of this word counts: together they are not all zero
        stream.state = np.append(words, np.uint32(624))
        return stream
    if not HAS_SUBSTREAMS[generator]:
        (word,) = seed_seq.generate_state(1)
        return _tvmathrng.RandStream(generator, word, substream=substream)
    word, low, high = map(int, seed_seq.generate_state(3))
    streams = _tvmathrng.RandStream(generator).parameters.num_streams
    return _tvmathrng.RandStream(generator, word, stream_index=(high * _ONE_WORD + low) % streams,
                                 num_streams=streams, substream=substream)


def _make_class(generator, core):
    doc = f"{generator} as a bit generator of NumPy: see BitGenerator for the arguments."
    return type(class_name(core), (BitGenerator,),
                {"__doc__": doc, "__module__": "tvmathrng", "generator": generator})


CLASSES = {name: _make_class(name, core) for name, core, _ in _tvmathrng.catalogue()}
HAS_SUBSTREAMS = {name: has for name, _, has in _tvmathrng.catalogue()}
BitGenerator.__module__ = "tvmathrng"
