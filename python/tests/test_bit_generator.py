"""NumPy's generators on our streams."""

import copy
import pickle

import numpy as np
import pytest

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
    assert twin.bit_generator.stream is not g.bit_generator.stream


def test_the_state_of_a_bit_generator_resumes():
    g = on(tv.RandStream("philox", seed=1))
    kept = g.bit_generator.state
    first = g.random(5)
    g.bit_generator.state = kept
    assert g.random(5).tolist() == first.tolist()


def test_the_stream_lives_as_long_as_what_draws_from_it():
    g = on(tv.RandStream("philox", seed=7))
    assert g.random() == tv.RandStream("philox", seed=7).rand()
    capsule = tv.RandStream("philox", seed=7).bit_generator().capsule

    class Holder:  # what NumPy needs of a bit generator
        def __init__(self):
            self.capsule, self.lock = capsule, tv.RandStream().bit_generator().lock

    assert np.random.Generator(Holder()).random() == tv.RandStream("philox", seed=7).rand()
