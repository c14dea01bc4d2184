"""NumPy's generators on our streams."""

import copy
import gc
import json
import pickle

import numpy as np
import pytest
from conftest import WITH_SUBSTREAMS
from numpy.random import SeedSequence

import tvmathrng as tv

# Every distribution of numpy.random.Generator, with the mean of one number where it is plain.
DISTRIBUTIONS = {
    "beta": ((2, 3), 0.4),
    "binomial": ((40, 0.25), 10),
    "chisquare": ((3,), 3),
    "dirichlet": (([1, 2, 1],), None),
    "exponential": ((2,), 2),
    "f": ((5, 12), 1.2),
    "gamma": ((2,), 2),
    "geometric": ((0.25,), 4),
    "gumbel": ((0, 1), 0.5772),
    "hypergeometric": ((30, 10, 8), 6),
    "integers": ((0, 11), 5),
    "laplace": ((1,), 1),
    "logistic": ((1,), 1),
    "lognormal": ((0, 0.5), np.exp(0.125)),
    "logseries": ((0.5,), 1 / np.log(4) * 2),
    "multinomial": ((9, [0.5, 0.5]), None),
    "multivariate_hypergeometric": (([5, 6], 4), None),
    "multivariate_normal": (([0, 1], [[1, 0], [0, 1]]), None),
    "negative_binomial": ((5, 0.5), 5),
    "noncentral_chisquare": ((3, 1), 4),
    "noncentral_f": ((3, 20, 1), None),
    "normal": ((1, 2), 1),
    "pareto": ((3,), 0.5),
    "poisson": ((4,), 4),
    "power": ((2,), 2 / 3),
    "random": ((), 0.5),
    "rayleigh": ((1,), np.sqrt(np.pi / 2)),
    "standard_cauchy": ((), None),
    "standard_exponential": ((), 1),
    "standard_gamma": ((3,), 3),
    "standard_normal": ((), 0),
    "standard_t": ((5,), 0),
    "triangular": ((0, 1, 2), 1),
    "uniform": ((2, 4), 3),
    "vonmises": ((0, 2), 0),
    "wald": ((1, 2), 1),
    "weibull": ((2,), np.sqrt(np.pi) / 2),
    "zipf": ((4,), None),
}


def on(stream):
    return np.random.Generator(stream.bit_generator())


@pytest.mark.parametrize("name", DISTRIBUTIONS)
def test_distributions_of_numpy_run_and_repeat(name):
    arguments, mean = DISTRIBUTIONS[name]
    values = getattr(on(tv.RandStream("philox", seed=1)), name)(*arguments, size=4000)
    again = getattr(on(tv.RandStream("philox", seed=1)), name)(*arguments, size=4000)
    assert np.array_equal(values, again)
    assert len(np.unique(values)) > 1
    if mean is not None:
        error = np.std(values) / np.sqrt(len(values))
        assert abs(np.mean(values) - mean) < 6 * error


def test_shuffles_and_choices_of_numpy_run():
    g = on(tv.RandStream("threefry", seed=2))
    assert sorted(g.permutation(50)) == sorted(g.permuted(np.arange(50))) == list(range(50))
    values = np.arange(50)
    g.shuffle(values)
    assert sorted(values) == list(range(50)) != values.tolist()
    assert len(set(g.choice(100, 10, replace=False))) == 10
    assert len(g.bytes(13)) == 13


def test_every_way_of_drawing_bits_reads_uniforms_in_order(generator):
    twin = tv.RandStream(generator, seed=4).rand(10)
    leading = (twin * 2.0**32).astype(np.uint64)
    g = on(tv.RandStream(generator, seed=4))
    assert g.random(2).tolist() == twin[:2].tolist()  # doubles
    raw = g.bit_generator.random_raw(2)  # 64 bits: two uniforms each
    assert raw.tolist() == ((leading[2:6:2] << np.uint64(32)) | leading[3:6:2]).tolist()
    assert g.integers(2**32, size=2, dtype=np.uint32).tolist() == leading[6:8].tolist()  # 32 bits
    whole = g.integers(2**64 - 1, endpoint=True, dtype=np.uint64)
    assert whole == (leading[8] << np.uint64(32)) | leading[9]


def test_other_doors_of_numpy_take_the_bit_generator():
    stream = tv.RandStream("mrg32k3a", seed=1)
    assert np.random.default_rng(stream.bit_generator()).random() == stream.at_substream(0).rand()
    assert np.random.RandomState(stream.bit_generator()).standard_normal(5).shape == (5,)


@pytest.mark.parametrize("make", [copy.deepcopy, lambda g: pickle.loads(pickle.dumps(g))])
def test_generators_of_numpy_are_copied_with_their_streams(make):
    g = on(tv.RandStream("mrg32k3a", seed=1))
    g.random(3)
    twin = make(g)
    assert g.gamma(2, size=5).tolist() == twin.gamma(2, size=5).tolist()
    g.bit_generator.spawn(1)
    assert make(g).bit_generator.seed_seq.spawn(1)[0].spawn_key == (1,)


def test_the_state_of_a_bit_generator_resumes():
    g = on(tv.RandStream("philox", seed=1))
    kept = g.bit_generator.state
    first = g.random(5)
    g.bit_generator.state = kept
    assert g.random(5).tolist() == first.tolist()


def test_blocks_drawn_ahead_are_never_seen(generator):
    """Whatever comes between NumPy's draws: the stream's own, its state, its settings, jumps."""
    stream, plain = tv.RandStream(generator, seed=3), tv.RandStream(generator, seed=3)
    g = on(stream)
    for full in (True, False):
        stream.full_precision = plain.full_precision = full
        for count in (1, 15, 16, 17, 5000):
            uniforms = plain.rand(2 * count)
            words = (uniforms[count:] * 2.0**32).astype(np.uint32)
            assert np.array_equal(g.random(count), uniforms[:count])
            assert np.array_equal(g.integers(2**32, size=count, dtype=np.uint32), words)
            assert np.array_equal(stream.state, plain.state)
        for act in (tv.RandStream.rand, tv.RandStream.randn, lambda s: s.advance(7), copy.copy,
                    lambda s: s.__setattr__("antithetic", not s.antithetic)):
            act(stream), act(plain)
            assert g.random() == plain.rand()
    for s in (stream, plain):
        s.substream = 0 if generator not in WITH_SUBSTREAMS else 5
        s.reset()
    assert g.random() == plain.rand() and stream.snapshot() == plain.snapshot()


def test_seeds_are_those_of_streams_or_go_through_seed_sequences(generator):
    kind = tv.bit_generators.CLASSES[generator]
    assert kind(7).random_raw() == tv.RandStream(generator, 7).bit_generator().random_raw()
    seeds = [7, 2**32, 2**100, [1, 2], np.arange(1500), SeedSequence(7), *SeedSequence(7).spawn(2)]
    first = [kind(seed).random_raw() for seed in seeds]
    assert len({*first, kind().random_raw(), kind().random_raw()}) == len(seeds) + 2
    assert first == [kind(seed).random_raw() for seed in seeds[:-2]] + first[-2:]
    parent = kind(7)
    assert [b.random_raw() for b in parent.spawn(2)] != [b.random_raw() for b in parent.spawn(2)]
    assert [b.random_raw() for b in kind(7).spawn(2)] == [b.random_raw() for b in kind(7).spawn(2)]


def test_places_of_a_family_are_those_of_streams():
    bits = tv.MRG32k3a(7, stream=2, num_streams=5, substream=9)
    twin = tv.RandStream("mrg32k3a", 7, stream_index=2, num_streams=5, substream=9)
    assert np.random.Generator(bits).random() == twin.rand()
    assert bits.jumped(2).stream.rand() == twin.at_substream(11).rand()
    assert bits.jumped().spawn(1)[0].random_raw() != bits.spawn(1)[0].random_raw()


def test_the_twister_is_seeded_by_all_its_words():
    words = SeedSequence(2**40).generate_state(624)
    words[0] = 2**31
    twin = np.random.MT19937()
    twin.state = {"bit_generator": "MT19937", "state": {"key": words, "pos": 624}}
    assert tv.MT19937ar(2**40).stream.rand() == np.random.Generator(twin).random()


def test_a_bit_generator_made_again_reseeds_all_that_draw_from_it():
    bits = tv.Philox4x32(1)
    g, address = np.random.Generator(bits), bits.ctypes.state_address
    g.random(5)
    bits.__init__(7, substream=3)
    expected = tv.RandStream("philox", seed=7, substream=3).rand(2).tolist()
    assert [g.random(), np.random.Generator(bits).random()] == expected
    assert bits.ctypes.state_address == address
    del bits
    gc.collect()
    assert 0 < g.random() < 1


def test_interfaces_of_numpy_are_all_there():
    bits = tv.Philox4x32(7)
    assert isinstance(bits, np.random.BitGenerator) and bits.lock is bits.lock
    assert bits.random_raw((2, 3)).shape == (2, 3) and bits.random_raw(4, output=False) is None
    face = bits.ctypes
    assert face.next_double(face.state) == tv.RandStream("philox", seed=7).rand(21)[20]
    assert bits.advance(3) is bits
    assert json.loads(json.dumps(bits.state)) == bits.state == copy.deepcopy(bits).state


# Generators without substreams have nowhere to jump to, and say so.
smoke = pytest.importorskip("numpy.random.tests.test_smoke", reason="NumPy's own tests are not installed")
for name, kind in tv.bit_generators.CLASSES.items():

    class Smoke(smoke.RNG):
        bit_generator = kind
        advance = 2**63 + 2**31 + 2**15 + 1
        seed = [12345]
        seed_vector_bits = 64

        @classmethod
        def setup_class(cls):
            cls.rg = np.random.Generator(cls.bit_generator(*cls.seed))
            cls.initial_state = cls.rg.bit_generator.state
            cls._extra_setup()

        if name not in WITH_SUBSTREAMS:

            @pytest.mark.xfail(strict=True, raises=tv.TvValueError)
            def test_jump(self):
                super().test_jump()

    Smoke.__name__ = f"Test{kind.__name__}"
    globals()[Smoke.__name__] = Smoke
    del Smoke
dtype = smoke.dtype
