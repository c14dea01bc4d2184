"""Streams as objects: places in a family, settings, copies, threads."""

import copy
import pickle
import signal
import threading
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest
from conftest import GENERATORS, WITH_SUBSTREAMS, same, unmoved

import tvmathrng as tv

PHILOX = tv.RandStream("philox")
PHILOX7 = tv.RandStream("philox", seed=7).rand()
COPIES = [
    lambda s: tv.RandStream.from_snapshot(s.snapshot()),
    lambda s: pickle.loads(pickle.dumps(s)),
    copy.copy,
    copy.deepcopy,
]


@pytest.mark.parametrize("make", COPIES)
def test_a_copy_goes_on_as_the_original_would(generator, make):
    stream = tv.RandStream(generator, seed=5, antithetic=True, randn_alg="Polar")
    stream.full_precision = False
    stream.rand(3), stream.randn(5)  # an odd number: one is pending
    twin = make(stream)
    for draw in (lambda s: s.randn(7), lambda s: s.rand(7), lambda s: s.randperm(9)):
        assert same(draw(stream), draw(twin))
    assert (twin.seed, twin.antithetic, twin.full_precision, twin.randn_alg) == (5, True, False, "Polar")
    stream.rand()
    assert not np.array_equal(stream.state, twin.state)


class Derived(tv.RandStream):
    pass


def test_derived_classes_are_copied_as_such():
    assert type(copy.copy(Derived("philox", seed=2))) is Derived
    assert pickle.loads(pickle.dumps(Derived(seed=2))).rand() == tv.RandStream(seed=2).rand()


def test_a_state_resumes(generator):
    stream = tv.RandStream(generator, seed=9)
    stream.rand(11)
    kept = stream.state
    first = stream.rand(7)
    stream.state = kept[::1]
    assert same(stream.rand(7), first)
    other = tv.RandStream(generator)
    other.state = kept
    assert same(other.rand(7), first)


@pytest.mark.parametrize("generator", WITH_SUBSTREAMS)
def test_substreams_are_places_in_the_stream(generator):
    stream = tv.RandStream(generator, seed=3, randn_alg="Inversion", antithetic=True)
    fresh = stream.rand(5)
    stream.substream = 4
    fourth = stream.randn(5)
    assert stream.substream == 4
    assert same(stream.at_substream(4).randn(5), fourth)
    assert same(stream.at_substream(0).rand(5), fresh)
    assert same(tv.RandStream(generator, seed=3, substream=4, randn_alg="inversion",
                              antithetic=True).randn(5), fourth)
    stream.reset()
    assert stream.substream == 0 and same(stream.rand(5), fresh)
    assert stream.parameters.num_substreams >= 2**51


def test_streams_of_a_seed_differ_and_can_be_made_alone():
    family = tv.streams("mrg32k3a", 3, seed=11, randn_alg="Polar")
    assert len({s.rand() for s in family}) == 3
    assert len({s.seed for s in tv.streams("philox", 9, seed="entropy")}) == 1
    alone = tv.RandStream("mrg32k3a", 11, stream_index=2, num_streams=3)
    alone.rand()
    assert alone.rand() == family[2].rand() and family[1].randn_alg == "Polar"


def test_numbers_of_64_bits_are_taken_whole():
    stream = tv.RandStream("threefry", stream_index=2**40 + 1, num_streams=2**50)
    twin = copy.copy(stream)
    assert (stream.stream_index, stream.num_streams) == (2**40 + 1, 2**50)
    stream.advance(2**64 - 1)
    for n in (2**63, 2**63 - 1):
        twin.advance(n)
    assert stream.rand() == twin.rand()
    stream.substream = 2**33 + 1
    assert stream.rand() == twin.at_substream(2**33 + 1).rand() != twin.at_substream(1).rand()


def test_advance_passes_over_draws(generator):
    stream, twin = tv.RandStream(generator), tv.RandStream(generator)
    stream.advance(2017)
    assert stream.rand() == twin.rand(2018)[-1]


def test_reset_takes_a_seed_or_keeps_it():
    stream = tv.RandStream(seed=1)
    first = stream.rand()
    stream.reset(2**32 - 1)
    assert stream.rand() == tv.RandStream(seed=2**32 - 1).rand()
    stream.reset("entropy")
    stream.reset(2)
    assert stream.seed == 2 and stream.rand() == tv.RandStream(seed=2).rand() != first
    seeds = {tv.RandStream(seed="entropy").seed for _ in range(4)}
    assert len(seeds) > 1


@pytest.mark.parametrize("spelling", ["philox", "PHILOX", "Philox4x32_10", "philox4x32-10"])
def test_generators_have_several_spellings(spelling):
    assert tv.RandStream(spelling).generator == "philox4x32_10"
    assert repr(tv.RandStream(spelling, seed=7)) == "RandStream('philox4x32_10', seed=7)"
    for family in (2, 5):
        stream = tv.RandStream(spelling, stream_index=1, num_streams=family)
        assert repr(stream) == f"RandStream('philox4x32_10', seed=0, stream_index=1, num_streams={family})"


def test_seeds_are_written_as_numpys_users_write_them():
    assert tv.RandStream(7) == tv.RandStream("mt19937ar", 7) == tv.RandStream(np.int64(7))
    assert len({tv.RandStream(None).seed, tv.RandStream(seed=None).seed, tv.RandStream("philox", None).seed}) > 1
    for wrong in (lambda: tv.RandStream(7, 8), lambda: tv.RandStream(7, seed=None), lambda: tv.RandStream(-1)):
        with pytest.raises(tv.TvError):
            wrong()


def test_streams_are_equal_that_draw_the_same(generator):
    stream, twin = tv.RandStream(generator, 7), tv.RandStream(generator, 7)
    assert stream == twin and stream == copy.copy(stream) and not stream != twin and stream != "x"
    assert stream != tv.RandStream(generator, 8)
    np.random.Generator(stream.bit_generator()).random(), twin.rand()
    assert stream == twin and tv.RandStream(generator, 7) != twin
    twin.antithetic = True
    assert stream != twin
    with pytest.raises(TypeError):
        hash(stream)


def test_a_representation_tells_the_substream(stream):
    stream.substream = 3
    assert repr(stream) == "RandStream('philox4x32_10', seed=7, substream=3)"
    assert eval("tv." + repr(stream)) == stream


def test_names_of_generators_make_streams():
    assert {"mt19937ar", "philox4x32_10"} < set(GENERATORS)
    assert [tv.RandStream(name).generator for name in GENERATORS] == GENERATORS


def busy_elsewhere(stream, fill):
    """Runs fill() in a thread; yields while it runs."""
    thread = threading.Thread(target=fill)
    thread.start()
    try:
        while thread.is_alive():
            yield
    finally:
        thread.join()


def test_a_fill_lets_other_threads_run_and_keeps_its_stream_to_itself():
    stream, other = tv.RandStream("mcg16807"), tv.RandStream("mcg16807")
    out = np.empty(3_000_000)
    refused = drawn = 0
    for _ in busy_elsewhere(stream, lambda: stream.randn(out=out)):
        try:
            stream.rand()
        except tv.TvThreadError as error:
            refused += 1
            assert error.identifier == "TALVOR:python:StreamInUse" and "at_substream" in str(error)
        other.rand(10)
        drawn += 1
    assert refused > 0 and drawn > 0
    # The refused calls drew nothing.
    twin = tv.RandStream("mcg16807")
    assert same(twin.randn(3_000_000), out) and twin.rand() == stream.rand()


USES = [
    *(lambda s, name=name: getattr(s, name)()
      for name in ("rand", "randn", "reset", "snapshot", "__getstate__", "__reduce__")),
    *(lambda s, name=name: getattr(s, name)
      for name in ("antithetic", "full_precision", "parameters", "randn_alg", "state", "substream")),
    *(lambda s, name=name, value=value: setattr(s, name, value)
      for name, value in (("antithetic", True), ("full_precision", False), ("randn_alg", "Polar"),
                          ("state", PHILOX.state), ("substream", 1))),
    lambda s: s.rand(3),
    lambda s: s.randi(6),
    lambda s: s.randi(6, 3),
    lambda s: s.randperm(5),
    lambda s: s.advance(3),
    lambda s: s.restore(PHILOX.snapshot()),
    lambda s: s.__setstate__(PHILOX.snapshot()),
    lambda s: s.bit_generator().random_raw(),
    lambda s: s.bit_generator().random_raw(3),
]


def test_a_stream_locked_for_numpy_is_in_use_elsewhere(stream):
    def refused(use):
        with pytest.raises(tv.TvThreadError):
            use(stream)

    bits = stream.bit_generator()
    with bits.lock, ThreadPoolExecutor(1) as other:
        list(other.map(refused, USES))
        assert other.submit(stream.at_substream, 0).result().rand() == PHILOX7  # constants are free
        with bits.lock, stream.bit_generator().lock:  # the thread that holds it goes on
            drawn = [stream.rand(), np.random.Generator(bits).random(), stream.rand()]
    assert drawn == tv.RandStream("philox", seed=7).rand(3).tolist()
    with ThreadPoolExecutor(1) as other:
        assert other.submit(stream.rand).result() == tv.RandStream("philox", seed=7).rand(4)[3]


def test_a_lock_is_left_as_often_as_it_was_entered(stream):
    lock = stream.bit_generator().lock

    def leave():
        with pytest.raises(tv.TvThreadError) as caught:
            lock.__exit__(None, None, None)
        assert caught.value.identifier == "TALVOR:python:NotLocked"

    with lock, ThreadPoolExecutor(1) as other:
        other.submit(leave).result()
    leave()


def test_waiting_for_a_stream_ends_with_a_signal(stream):
    def give_up(number, frame):
        raise TimeoutError

    lock, other = stream.bit_generator().lock, stream.bit_generator().lock
    held, done = threading.Event(), threading.Event()

    def hold():
        with lock:
            held.set()
            done.wait(20)

    before = signal.signal(signal.SIGALRM, give_up)
    thread = threading.Thread(target=hold)
    thread.start()
    try:
        held.wait()
        signal.setitimer(signal.ITIMER_REAL, 0.05)
        with pytest.raises(TimeoutError):
            other.__enter__()
    finally:
        signal.signal(signal.SIGALRM, before)
        done.set()
        thread.join()
    assert stream.rand() == tv.RandStream("philox", seed=7).rand()


def test_generators_of_numpy_wait_for_each_other():
    stream = tv.RandStream("mrg32k3a")
    generators = [np.random.Generator(stream.bit_generator()) for _ in range(4)]
    results = [None] * 4

    def work(i):
        results[i] = generators[i].random(50_000)

    threads = [threading.Thread(target=work, args=(i,)) for i in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    # Each fill was whole: together they are the sequence, in some order of the threads.
    whole = tv.RandStream("mrg32k3a").rand(200_000).reshape(4, -1)
    assert sorted(r[0] for r in results) == sorted(whole[:, 0])
    assert sorted(r[-1] for r in results) == sorted(whole[:, -1])


def test_work_items_have_their_numbers_on_any_number_of_threads():
    base = tv.RandStream("philox", seed=42)
    items = [base.at_substream(k) for k in range(8)]
    expected = [base.at_substream(k).randn(20_000) for k in range(8)]
    results = [None] * 8

    def work(worker):
        for k in range(worker, 8, 3):
            results[k] = items[k].randn(20_000)

    threads = [threading.Thread(target=work, args=(w,)) for w in range(3)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert all(same(a, b) for a, b in zip(results, expected))
