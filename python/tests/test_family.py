"""Work items by their numbers, and the ways in that NumPy's users know."""

import copy
import pickle

import numpy as np
import pytest
from conftest import GENERATORS, WITH_SUBSTREAMS

import tvmathrng
import tvmathrng as tv


@pytest.mark.parametrize("generator", WITH_SUBSTREAMS)
def test_an_item_has_its_numbers_wherever_it_is_asked_for(generator):
    family = tv.Family(42, generator)
    base = tv.RandStream(generator, 42)
    base.state = tv.RandStream(generator, 99).state  # makes no other family
    for k in (0, 1, 2**33 + 1):
        expected = tv.RandStream(generator, 42, substream=k).rand()
        assert expected == family[k].rand() == family.rng(k).random() == base.at_substream(k).rand()
        assert expected == tvmathrng.random.default_rng(42, generator, item=k).random()


def test_families_are_two_constants():
    family = tv.Family(42, "Philox")
    assert len(pickle.dumps(family)) <= 60
    for twin in (pickle.loads(pickle.dumps(family)), copy.copy(family), copy.deepcopy(family), eval(f"tv.{family}")):
        assert twin == family and hash(twin) == hash(family) and repr(twin) == repr(family)
    assert len({family, tv.Family(42), tv.Family(43), tv.Family(42, "threefry")}) == 3
    assert tv.Family(None).seed != tv.Family(None).seed and family != 42
    for change in (lambda: setattr(family, "seed", 1), lambda: delattr(family, "seed"), lambda: family.__init__(1)):
        with pytest.raises(tv.TvTypeError):
            change()
    with pytest.raises(TypeError):
        list(family)
    with pytest.raises(tv.TvValueError):
        family[-1]
    tokenize = pytest.importorskip("dask.base", reason="Dask is not installed").tokenize
    assert tokenize(family) == tokenize(tv.Family(42)) != tokenize(tv.Family(43))


@pytest.mark.parametrize("generator", sorted({*GENERATORS} - {*WITH_SUBSTREAMS}))
def test_generators_without_substreams_have_no_items(generator):
    with pytest.raises(tv.TvValueError, match="philox4x32_10"):
        tv.Family(1, generator)
    assert 0 < tvmathrng.random.default_rng(1, generator).random() < 1


def test_what_numpy_takes_for_a_generator_is_taken():
    default_rng = tvmathrng.random.default_rng
    stream, bits = tv.RandStream("philox", seed=7), tv.Threefry4x64(7)
    g = default_rng(stream)
    assert [g.random(), stream.rand()] == tv.RandStream("philox", seed=7).rand(2).tolist()
    assert default_rng(g) is g and default_rng(bits).bit_generator is bits
    for seed in (None, stream, bits, g):
        with pytest.raises(tv.TvValueError, match="item"):
            default_rng(seed, item=3)
    ours = default_rng(np.random.SeedSequence(5).spawn(2)[1], "mrg32k3a")
    assert isinstance(ours.bit_generator, tv.MRG32k3a) and len(ours.choice(9, 4)) == 4


def test_a_stream_tells_where_numpys_methods_are(stream):
    for name in ("choice", "shuffle", "standard_normal", "integers"):
        with pytest.raises(tv.TvAttributeError, match=rf"Generator\(stream.bit_generator\(\)\)\.{name}"):
            getattr(stream, name)
        assert name not in dir(stream) and name not in dir(tv.RandStream) and not hasattr(stream, name)

    class Own(tv.RandStream):
        def choice(self):
            return 1

    assert Own().choice() == 1
    with pytest.raises(AttributeError, match="'nothing'"):
        stream.nothing
