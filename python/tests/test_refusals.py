"""Wrong use: a clear error that is a TvError with an identifier, nothing drawn, nothing leaked."""

import gc
import pickle
import subprocess
import sys

import numpy as np
import pytest
from conftest import unmoved

import tvmathrng as tv

LIBRARY = "TALVOR:RandStream:"
OWN = "TALVOR:python:"


def read_only():
    a = np.empty(3)
    a.setflags(write=False)
    return a


def misaligned():
    return np.empty(25, np.uint8)[1:].view(np.float64)


class Unshown:
    def __repr__(self):
        raise ValueError("not now")


BAD_SAMPLING = [
    (lambda s: s.rand(-1), ValueError, OWN + "InvalidShape", "negative"),
    (lambda s: s.rand(2, 1.5), TypeError, OWN + "InvalidShape", "1.5"),
    (lambda s: s.rand("3"), TypeError, OWN + "InvalidShape", "'3'"),
    (lambda s: s.rand((2, "x")), TypeError, OWN + "InvalidShape", "'x'"),
    (lambda s: s.rand([2], 3), TypeError, OWN + "InvalidShape", "[2]"),
    (lambda s: s.rand(b"34"), TypeError, OWN + "InvalidShape", "b'34'"),
    (lambda s: s.rand(np.array([3]), 2), TypeError, OWN + "InvalidShape", "array([3])"),
    (lambda s: s.rand(-10**5000), ValueError, OWN + "InvalidShape", "of type int"),
    (lambda s: s.rand(*[1] * 100), ValueError, OWN + "InvalidShape", "dimension"),
    (lambda s: s.rand(Unshown()), TypeError, OWN + "InvalidShape", "Unshown"),
    (lambda s: s.rand("\ud800"), TypeError, OWN + "InvalidShape", "ud800"),
    (lambda s: s.rand(2**62, 2**62, 0), MemoryError, OWN + "TooLarge", "memory"),
    (lambda s: s.rand(10**6, 10**6, 10**6), MemoryError, OWN + "TooLarge", "memory"),
    (lambda s: s.rand(2**62, 2**62), MemoryError, OWN + "TooLarge", "memory"),
    (lambda s: s.rand(10**30), MemoryError, OWN + "TooLarge", "memory"),
    (lambda s: s.randperm(2**50), MemoryError, OWN + "TooLarge", "memory"),
    (lambda s: s.rand(3, dtype=np.int32), TypeError, OWN + "InvalidDtype", "float32"),
    (lambda s: s.rand(3, dtype="nonsense"), TypeError, OWN + "InvalidDtype", "'nonsense'"),
    (lambda s: s.rand(3, dtype=">f8"), TypeError, OWN + "InvalidDtype", "byte order"),
    (lambda s: s.randi(3, 3, dtype=complex), TypeError, OWN + "InvalidDtype", "int64"),
    (lambda s: s.randperm(3, dtype=np.int8), TypeError, OWN + "InvalidDtype", "int8"),
    (lambda s: s.rand(3, order="A"), ValueError, OWN + "InvalidOrder", "'A'"),
    (lambda s: s.rand(3, size=3), TypeError, OWN + "InvalidShape", "twice"),
    (lambda s: s.rand(size="3"), TypeError, OWN + "InvalidShape", "'3'"),
    (lambda s: s.rand(shape=3), TypeError, OWN + "UnknownArgument", "'shape'"),
    (lambda s: s.randperm(3, size=3), TypeError, OWN + "UnknownArgument", "'size'"),
    (lambda s: s.rand(out=[0.0]), TypeError, OWN + "InvalidOut", "list"),
    (lambda s: s.rand(out=read_only()), ValueError, OWN + "InvalidOut", "read-only"),
    (lambda s: s.rand(out=misaligned()), ValueError, OWN + "InvalidOut", "aligned"),
    (lambda s: s.rand(out=np.empty((4, 4))[:, ::2]), ValueError, OWN + "InvalidOut", "strides"),
    (lambda s: s.rand(out=np.empty(8)[::-1]), ValueError, OWN + "InvalidOut", "strides"),
    (lambda s: s.rand(out=np.empty(3, np.int32)), TypeError, OWN + "InvalidDtype", "int32"),
    (lambda s: s.rand(out=np.empty(3, ">f8")), TypeError, OWN + "InvalidDtype", "byte order"),
    (lambda s: s.rand(out=np.empty(3), dtype="f4"), TypeError, OWN + "InvalidOut", "f4"),
    (lambda s: s.rand(4, out=np.empty(3)), ValueError, OWN + "InvalidOut", "(4,)"),
    (lambda s: s.rand(out=np.empty((2, 3)), order="F"), ValueError, OWN + "InvalidOut", "'F'"),
    (lambda s: s.randi(), TypeError, OWN + "InvalidLimits", "limits"),
    (lambda s: s.randi("6"), TypeError, OWN + "InvalidLimits", "'6'"),
    (lambda s: s.randi((1, 2, 3)), ValueError, OWN + "InvalidLimits", "(1, 2, 3)"),
    (lambda s: s.randi((5, 1)), ValueError, LIBRARY + "randi:invalidLimits", "whole"),
    (lambda s: s.randi(1.5, 0), ValueError, LIBRARY + "randi:invalidLimits", "whole"),
    (lambda s: s.randi(2**53), ValueError, LIBRARY + "randi:LimitsTooLarge", "2^53"),
    (lambda s: s.randi(10**400, 2), ValueError, LIBRARY + "randi:LimitsTooLarge", "2^53"),
    (lambda s: s.randi((0, 256), 3, dtype=np.uint8), ValueError, OWN + "LimitsDoNotFit", "256"),
    (lambda s: s.randi((-1, 6), 3, dtype=np.uint64), ValueError, OWN + "LimitsDoNotFit", "uint64"),
    (lambda s: s.randi(2**24 + 1, 3, dtype="f4"), ValueError, OWN + "LimitsDoNotFit", "float32"),
    (lambda s: s.randi((-(2**24) - 1, 0), 3, dtype="f4"), ValueError, OWN + "LimitsDoNotFit", "float32"),
    (lambda s: s.randperm(2**31 + 1, 2, dtype="i4"), ValueError, OWN + "LimitsDoNotFit", "int32"),
    (lambda s: s.randperm(-1), ValueError, OWN + "InvalidNumber", "-1"),
    (lambda s: s.randperm(2.5), TypeError, OWN + "InvalidNumber", "2.5"),
    (lambda s: s.randperm(1, 2, 3), TypeError, OWN + "InvalidNumber", "k"),
    (lambda s: s.randperm(3, 4), ValueError, LIBRARY + "randperm:inputKTooLarge", "k"),
    (lambda s: s.randperm(2**53, 4), ValueError, LIBRARY + "randperm:inputNTooLarge", "n"),
    (lambda s: s.randperm(2**40, 2, dtype="i4"), ValueError, OWN + "LimitsDoNotFit", "int32"),
    (lambda s: s.randperm(3, out=np.empty(4, int)), ValueError, OWN + "InvalidOut", "(3,)"),
]
BAD_CONTROL = [
    (lambda s: setattr(s, "substream", -1), ValueError, OWN + "InvalidNumber", "-1"),
    (lambda s: setattr(s, "substream", 0.5), TypeError, OWN + "InvalidNumber", "0.5"),
    (lambda s: setattr(s, "randn_alg", "Fast"), ValueError, LIBRARY + "set:UnknownRandnAlg", "Fast"),
    (lambda s: setattr(s, "randn_alg", "Polar\0"), ValueError, OWN + "InvalidText", "Polar"),
    (lambda s: setattr(s, "randn_alg", "\ud800"), ValueError, OWN + "InvalidText", "ud800"),
    (lambda s: setattr(s, "randn_alg", 3), TypeError, OWN + "InvalidText", "3"),
    (lambda s: setattr(s, "antithetic", "no"), TypeError, OWN + "InvalidFlag", "'no'"),
    (lambda s: setattr(s, "state", s.state[1:]), ValueError, LIBRARY + "set:InvalidStateLen", "philox"),
    (lambda s: setattr(s, "state", np.append(s.state, s.state)), ValueError,
     LIBRARY + "set:InvalidStateLen", "philox"),
    (lambda s: setattr(s, "state", s.state + 0.5), ValueError, LIBRARY + "set:InvalidStateClass", "philox"),
    (lambda s: setattr(s, "state", 0 * s.state), ValueError,
     LIBRARY + "philox4x32_10:InvalidState", "philox"),
    (lambda s: s.advance(-1), ValueError, OWN + "InvalidNumber", "-1"),
    (lambda s: s.advance(10**5000), ValueError, OWN + "InvalidNumber", "of type int"),
    (lambda s: s.advance(np.array([3])), TypeError, OWN + "InvalidNumber", "array([3])"),
    (lambda s: s.reset(np.array([3])), ValueError, LIBRARY + "reset:BadSeed", "4294967295"),
    (lambda s: s.at_substream(-1), ValueError, OWN + "InvalidNumber", "k"),
    (lambda s: s.restore("\udfff"), ValueError, OWN + "InvalidText", "udfff"),
    (lambda s: s.advance(2**64), ValueError, OWN + "InvalidNumber", "2^64"),
    (lambda s: s.reset(2**32), ValueError, LIBRARY + "reset:BadSeed", "4294967295"),
    (lambda s: s.restore("nothing"), ValueError, LIBRARY + "snapshot:NotASnapshot", "snapshot"),
    (lambda s: s.restore(s.snapshot()[:-3]), ValueError, LIBRARY + "snapshot:Truncated", "end"),
    (lambda s: s.restore(tv.RandStream().snapshot()), ValueError,
     LIBRARY + "snapshot:OtherGenerator", "mt19937ar"),
    (lambda s: s.bit_generator().lock.__exit__(None, None, None), RuntimeError,
     OWN + "NotLocked", "entered"),
]
BAD_CREATION = [
    (lambda: tv.RandStream("twistr"), ValueError, LIBRARY + "create:UnknownRNGType", '"twister"?'),
    (lambda: tv.RandStream("foo"), ValueError, LIBRARY + "create:UnknownRNGType", "philox4x32_10"),
    (lambda: tv.RandStream("\udc80"), ValueError, OWN + "InvalidText", "udc80"),
    (lambda: tv.RandStream("mt19937ar\0x"), ValueError, OWN + "InvalidText", "x00x"),
    (lambda: tv.streams("philox", 0), ValueError, LIBRARY + "create:BadNumStreams", "1"),
    (lambda: tv.streams("philox", -2), ValueError, OWN + "InvalidNumber", "-2"),
    (lambda: tv.RandStream(7, 8), TypeError, OWN + "InvalidText", "7"),
    (lambda: tv.RandStream(seed=-1), ValueError, LIBRARY + "create:BadSeed", "4294967295"),
    (lambda: tv.RandStream(seed=1.0), ValueError, LIBRARY + "create:BadSeed", "4294967295"),
    (lambda: tv.RandStream(seed="today"), ValueError, LIBRARY + "create:BadSeed", "4294967295"),
    (lambda: tv.RandStream(num_streams=0), ValueError, LIBRARY + "create:BadNumStreams", "1"),
    (lambda: tv.RandStream("philox", stream_index=2, num_streams=2), ValueError,
     LIBRARY + "create:BadStreamIndex", "below"),
    (lambda: tv.RandStream(num_streams=2), ValueError,
     LIBRARY + "mt19937ar:MultipleStreams", "one stream"),
    (lambda: tv.RandStream(substream=1), ValueError,
     LIBRARY + "set:SubstreamsNotSupported", "mt19937ar"),
    (lambda: tv.RandStream().parameters, ValueError, OWN + "NoSubstreams", "mt19937ar"),
    (lambda: tv.RandStream.__new__(tv.RandStream).rand(), TypeError, OWN + "NotInitialised", "__init__"),
    (lambda: tv.RandStream.__new__(tv.RandStream).seed, TypeError, OWN + "NotInitialised", "__init__"),
]


def check(error, identifier, said):
    assert isinstance(error, tv.TvError)
    assert (error.identifier, said in str(error)) == (identifier, True), str(error)


@pytest.mark.parametrize("call, kind, identifier, said", BAD_SAMPLING + BAD_CONTROL)
def test_a_refused_call_draws_nothing_and_says_why(stream, call, kind, identifier, said):
    stream.rand(3)
    check(unmoved(stream, lambda: call(stream), kind), identifier, said)


@pytest.mark.parametrize("call, kind, identifier, said", BAD_CREATION)
def test_a_stream_that_cannot_be_made_says_why(call, kind, identifier, said):
    with pytest.raises(kind) as caught:
        call()
    check(caught.value, identifier, said)


LITTLE_MEMORY = """
import resource, tvmathrng as tv
resource.setrlimit(resource.RLIMIT_AS, (1_500_000_000,) * 2)
stream = tv.RandStream()
for call in (lambda: stream.rand(200_000_000), lambda: stream.randperm(150_000_000, dtype="i4")):
    try:
        call()
    except tv.TvMemoryError as error:
        print(error.identifier)
assert stream.rand() == tv.RandStream().rand()
"""


def test_memory_that_cannot_be_had_is_an_error_of_ours():
    done = subprocess.run([sys.executable, "-c", LITTLE_MEMORY], capture_output=True, text=True)
    assert done.stdout.split() == ["TALVOR:nomem"] * 2, done.stderr


def test_a_refused_out_keeps_its_contents(stream):
    out = np.arange(6.0).reshape(2, 3)
    unmoved(stream, lambda: stream.rand(3, 2, out=out), ValueError)
    assert out.tolist() == [[0, 1, 2], [3, 4, 5]]


def test_long_values_are_cut_between_characters():
    with pytest.raises(tv.TvTypeError) as caught:
        tv.rand("\u00e9" * 10**6)
    assert str(caught.value).endswith("\u00e9...") and len(str(caught.value)) < 200


def test_errors_of_the_callers_own_pass_through(stream):
    class Failing:
        def __index__(self):
            raise KeyError("mine")

        __float__ = __index__

    for call in (stream.rand, stream.randi, stream.advance, stream.reset, stream.randperm):
        unmoved(stream, lambda: call(Failing()), KeyError)


def test_errors_survive_pickling():
    with pytest.raises(tv.TvError) as caught:
        tv.RandStream("foo")
    copy = pickle.loads(pickle.dumps(caught.value))
    assert (type(copy), copy.identifier) == (tv.TvValueError, caught.value.identifier)


def test_nothing_leaks(stream):
    """Blocks of the interpreter and references to arguments, after many calls of each kind."""
    out, dtype = np.empty(2000), np.dtype("f4")

    def all_calls():
        for call, kind, _, _ in BAD_SAMPLING + BAD_CONTROL:
            with pytest.raises(kind):
                call(stream)
        stream.rand(out=out)
        stream.randn(3, dtype=dtype)
        stream.randi((1, 6), 5, dtype="i1")
        stream.randperm(5, 2)
        pickle.loads(pickle.dumps(np.random.Generator(stream.bit_generator()))).gamma(2)
        tv.RandStream.from_snapshot(stream.snapshot()).at_substream(3).state

    def held():
        gc.collect()
        references = sum(map(sys.getrefcount, (stream, out, dtype, np.dtype("f8"))))
        return sys.getallocatedblocks(), references

    rounds, grown = 150, []
    for _ in range(4):
        before = held()
        for _ in range(rounds):
            all_calls()
        grown.append(np.subtract(held(), before))
    # Caches of the interpreter grow by fits; a leak of one block or reference a round, every time.
    blocks, references = np.min(grown, axis=0)
    assert blocks < rounds and references < rounds / 10
