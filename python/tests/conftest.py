"""Names that every test uses."""

import numpy as np
import pytest

import tvmathrng as tv

GENERATORS = tv.generators()


def has_substreams(name):
    try:
        return tv.RandStream(name).parameters.num_substreams > 1
    except tv.TvError:
        return False


WITH_SUBSTREAMS = [name for name in GENERATORS if has_substreams(name)]


@pytest.fixture
def stream():
    return tv.RandStream("philox4x32_10", seed=7)


@pytest.fixture(params=GENERATORS)
def generator(request):
    return request.param


def unmoved(stream, call, error):
    """Makes a call that must be refused; returns the error, once the stream is known to stand still."""
    before = stream.snapshot()
    with pytest.raises(error) as caught:
        call()
    assert stream.snapshot() == before
    return caught.value


def same(a, b):
    return np.array_equal(a, b) and np.asarray(a).dtype == np.asarray(b).dtype
