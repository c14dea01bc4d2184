"""What sampling calls return: the numbers of the host language, in the arrays that NumPy users expect."""

import json
import os
import subprocess

import numpy as np
import pytest
from conftest import same, unmoved

import tvmathrng as tv

SHELL = os.environ.get("TVRNG")

# In the host language; in Python on a stream of the same generator and seed.
SAME_NUMBERS = [
    ("rand(s,3,4)", lambda s: s.rand(3, 4, order="F")),
    ("rand(s,1,5,'single')", lambda s: s.rand(1, 5, dtype=np.float32)),
    ("rand(s,1,3,'like',1i)", lambda s: s.rand(1, 3, dtype=complex)),
    ("randn(s,2,7)", lambda s: s.randn(2, 7, order="F")),
    ("randn(s,1,3,'like',single(1i))", lambda s: s.randn(1, 3, dtype=np.complex64)),
    ("randi(s,[-5 9],1,250,'int8')", lambda s: s.randi((-5, 9), 1, 250, dtype=np.int8)),
    ("randi(s,2^53-1,1,1100)", lambda s: s.randi(2**53 - 1, 1, 1100)),
    ("randi(s,[0 1],1,9,'logical')", lambda s: s.randi((0, 1), 1, 9, dtype=bool)),
    ("randperm(s,20)", lambda s: s.randperm(20) + 1),
    ("randperm(s,20,20)", lambda s: s.randperm(20, 20) + 1),
    ("randperm(s,1e9,4)", lambda s: s.randperm(10**9, 4) + 1),
]


@pytest.mark.skipif(not SHELL, reason="TVRNG does not name the shell of the host language")
@pytest.mark.parametrize("call, draw", SAME_NUMBERS)
@pytest.mark.parametrize("generator", ["mt19937ar", "mrg32k3a"])
def test_numbers_are_those_of_the_host_language(generator, call, draw):
    source = f"s = RandStream('{generator}','Seed',3); rand(s); {call}"
    said = subprocess.run([SHELL, "--json", "-e", source], check=True, capture_output=True).stdout
    stream = tv.RandStream(generator, seed=3)
    stream.rand()
    flat = draw(stream).ravel(order="F")
    numbers = flat.view(flat.real.dtype) if np.iscomplexobj(flat) else flat
    assert same(numbers, np.array(json.loads(said)["data"], dtype=numbers.dtype).ravel())


def test_an_array_of_ones_own_may_be_told_twice(stream):
    twin = tv.RandStream("philox4x32_10", seed=7)
    point = np.empty(())
    assert stream.rand(out=point) is point and point == twin.rand()
    out = np.empty((2, 3), np.float32, order="F")
    assert stream.randn((2, 3), out=out, dtype=np.float32, order="F") is out
    assert same(out, twin.randn(2, 3, dtype="f4", order="F"))


def test_a_fill_runs_along_memory(stream):
    flat = stream.rand(24)
    stream.reset()
    c = stream.rand(2, 3, 4)
    stream.reset()
    f = stream.rand((2, 3, 4), order="F")
    assert c.flags.c_contiguous and same(c.ravel(), flat)
    assert f.flags.f_contiguous and same(f.ravel(order="F"), flat)
    for out in (np.empty((2, 3, 4)), np.empty((2, 3, 4), order="F"), np.empty(24)[::1]):
        stream.reset()
        assert stream.rand(out=out) is out
        assert same(out.ravel(order="K"), flat)


@pytest.mark.parametrize(
    "call, kind",
    [
        (lambda s: s.rand(), float),
        (lambda s: s.randn(), float),
        (lambda s: s.randi(6), int),
        (lambda s: s.randi((-3, 3)), int),
        (lambda s: s.rand(dtype="f4"), np.float32),
        (lambda s: s.randn(dtype="c8"), np.complex64),
        (lambda s: s.randi(6, dtype="u2"), np.uint16),
    ],
)
def test_a_call_without_a_shape_returns_one_number(stream, call, kind):
    assert type(call(stream)) is kind


def test_numbers_one_by_one_are_those_of_an_array(stream):
    for draw in (stream.rand, lambda *shape: stream.randi((-7, 2**40), *shape)):
        stream.reset()
        singles = [draw() for _ in range(10)]
        stream.reset()
        assert draw(10).tolist() == singles


@pytest.mark.parametrize("shape", [(), (0,), (3, 0, 2), (1, 1)])
def test_shapes_may_be_empty(stream, shape):
    before = stream.state
    values = stream.rand(shape)
    assert values.shape == shape and isinstance(values, np.ndarray)
    assert np.array_equal(stream.state, before) == (values.size == 0)


@pytest.mark.parametrize("size", [3, (2, 3), [4], (), None, np.int8(2)])
def test_size_is_the_shape(stream, size):
    twin = tv.RandStream("philox", seed=7)
    shape = () if size is None else (size,)
    assert same(stream.rand(size=size), twin.rand(*shape))
    assert same(stream.randn(size=size, dtype="f4"), twin.randn(*shape, dtype="f4"))
    assert same(stream.randi((1, 6), size=size), twin.randi((1, 6), *shape))


class Made:
    """A sequence that keeps none of its elements."""

    def __len__(self):
        return 2

    def __getitem__(self, i):
        return range(1000, 1002)[i]


def test_any_sequence_is_a_shape(stream):
    assert stream.rand(Made(), dtype="f4").shape == (1000, 1001)


# Any whole number will do where one is wanted.
def test_numbers_of_numpy_are_numbers(stream):
    assert stream.rand(np.int8(2), np.uint64(3)).shape == (2, 3)
    assert stream.rand(np.array([2, 3])).shape == (2, 3) == stream.rand([2, 3]).shape
    assert stream.rand(np.array(2)).shape == stream.rand(np.int64(2)).shape == (2,)
    assert stream.randi(np.float64(6), np.int32(5)).max() <= 6


def test_integers_reach_both_limits_in_every_type(stream):
    for dtype in "bhilBHILfd":
        values = stream.randi((1, 3), 100, dtype=dtype)
        assert values.dtype == np.dtype(dtype) and set(values.tolist()) == {1, 2, 3}
    for dtype in (np.int8, np.uint8):
        bounds = np.iinfo(dtype)
        values = stream.randi((int(bounds.min), int(bounds.max)), 5000, dtype=dtype)
        assert (values.min(), values.max()) == (bounds.min, bounds.max)
    for dtype, limit in (("f4", 2**24), ("f8", 2**53 - 1), ("i8", 2**53 - 1)):
        assert stream.randi((limit, limit), 3, dtype=dtype).tolist() == [limit] * 3


@pytest.mark.parametrize("count", [1, 2, 999, 1000, 1001, 2001])
def test_integers_of_64_bits_are_the_doubles_in_any_number(stream, count):
    draws = []
    for dtype in ("f8", "i8", "u8"):
        stream.reset()
        draws.append(stream.randi((3, 2**53 - 9), count, dtype=dtype).tolist() + [stream.rand()])
    assert draws[0] == draws[1] == draws[2]


def test_positions_fit_every_type(stream):
    for dtype in ("i8", "i4", "u8", "u4", "f8"):
        assert sorted(stream.randperm(9, dtype=dtype).tolist()) == list(range(9))
    out = np.empty(3, np.int32)
    assert stream.randperm(9, 3, out=out) is out and len(set(out.tolist())) == 3
    assert stream.randperm(0).shape == stream.randperm(5, 0).shape == (0,)
    assert stream.randperm(1).tolist() == stream.randperm(1, None).tolist() == [0]
    assert stream.randperm(2**31, 3, dtype="i4").min() >= 0


def test_module_functions_draw_from_the_global_stream(stream):
    twin = tv.RandStream.from_snapshot(stream.snapshot())
    before = tv.set_global_stream(stream)
    try:
        assert tv.global_stream() is stream
        assert same(tv.rand(2, 3), twin.rand(2, 3)) and tv.rand() == twin.rand()
        assert same(tv.randn(3), twin.randn(3)) and tv.randi(9) == twin.randi(9)
        assert same(tv.randperm(5), twin.randperm(5))
        assert isinstance(unmoved(stream, lambda: tv.rand(-1), ValueError), tv.TvError)
    finally:
        assert tv.set_global_stream(before) is stream
    with pytest.raises(tv.TvTypeError):
        tv.set_global_stream("mt19937ar")
