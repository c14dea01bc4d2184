"""Objects in every state that Python lets them be in: pickled, half made, made twice, derived, at work
when the interpreter starts and ends."""

import copy
import pickle
import subprocess
import sys

import numpy as np
import pytest
from conftest import unmoved

import tvmathrng as tv

OWN = "TALVOR:python:"
LIBRARY = "TALVOR:RandStream:"
LOCK = type(tv.RandStream().bit_generator().lock)
BASE = tv.RandStream.__base__


def unmade(kind=tv.RandStream):
    return kind.__new__(kind)


class Named(tv.RandStream):
    """A class of a user's, with something of its own."""

    def __init__(self, name, **settings):
        super().__init__("philox", **settings)
        self.name = name


class Hurried(tv.Philox4x32):
    def __init__(self):
        self.stream


class Both(tv.RandStream, LOCK):
    def __init__(self):
        tv.RandStream.__init__(self)


NOT_MADE = "NotInitialised"
MISUSE = [
    (lambda s: s.__init__("nope"), ValueError, LIBRARY + "create:UnknownRNGType"),
    (lambda s: s.__init__("philox"), TypeError, OWN + "AlreadyInitialised"),
    (lambda s: s.__setstate__(None), TypeError, OWN + "InvalidText"),
    (lambda s: s.__setstate__(tv.RandStream().snapshot()), ValueError, LIBRARY + "snapshot:OtherGenerator"),
    (lambda s: s.__setstate__((tv.RandStream("philox").snapshot(), {"a": 1})), TypeError, OWN + "InvalidState"),
    (lambda s: s.bit_generator().__init__("x"), TypeError, OWN + "InvalidSeed"),
    (lambda s: s.bit_generator().__init__(1, stream=1), ValueError, LIBRARY + "create:BadStreamIndex"),
    (lambda s: tv.Philox4x32([1, 2], num_streams=2), ValueError, OWN + "InvalidSeed"),
    (lambda s: tv.Philox4x32(-1), ValueError, OWN + "InvalidSeed"),
    (lambda s: tv.BitGenerator(3), TypeError, OWN + "NoGenerator"),
    (lambda s: setattr(s.bit_generator(), "state", 3), TypeError, OWN + "InvalidState"),
    (lambda s: setattr(s.bit_generator(), "state", tv.MT19937ar(1).state), ValueError, OWN + "InvalidState"),
    (lambda s: tv.MT19937ar(1).jumped(), ValueError, LIBRARY + "set:SubstreamsNotSupported"),
    (lambda s: unmade().__setstate__(None), TypeError, OWN + "InvalidText"),
    (lambda s: unmade().__setstate__("x"), ValueError, LIBRARY + "snapshot:NotASnapshot"),
    (lambda s: unmade(Named).__setstate__((s.snapshot(), 3)), TypeError, OWN + "InvalidState"),
    (lambda s: unmade().rand(), TypeError, OWN + NOT_MADE),
    (lambda s: unmade().__reduce__(), TypeError, OWN + NOT_MADE),
    (lambda s: copy.copy(unmade()), TypeError, OWN + NOT_MADE),
    (lambda s: copy.deepcopy(unmade(Named)), TypeError, OWN + NOT_MADE),
    (lambda s: unmade(tv.Philox4x32).random_raw(), TypeError, OWN + NOT_MADE),
    (lambda s: unmade(tv.Philox4x32).state, TypeError, OWN + NOT_MADE),
    (lambda s: unmade(LOCK).__enter__(), TypeError, OWN + NOT_MADE),
    (lambda s: unmade(LOCK).__exit__(), TypeError, OWN + NOT_MADE),
    (lambda s: Hurried(), TypeError, OWN + NOT_MADE),
    (lambda s: Both(), TypeError, OWN + "InvalidBases"),
    (lambda s: BASE(), TypeError, OWN + "InvalidBases"),
    (lambda s: object.__reduce__(s), TypeError, OWN + "InvalidBases"),
    (lambda s: pickle.dumps(s.bit_generator().lock, 0), TypeError, OWN + "InvalidBases"),
    (lambda s: tv.RandStream.reset(3), TypeError, OWN + "NotAStream"),
]


@pytest.mark.parametrize("call, kind, identifier", MISUSE)
def test_misuse_of_objects_is_refused_and_changes_nothing(stream, call, kind, identifier):
    assert unmoved(stream, lambda: call(stream), kind).identifier == identifier


@pytest.mark.parametrize("protocol", range(pickle.HIGHEST_PROTOCOL + 1))
def test_every_protocol_of_pickling_keeps_streams(stream, protocol):
    next_one = tv.RandStream.from_snapshot(stream.snapshot()).rand()
    generator = np.random.Generator(stream.bit_generator())
    twin, other = pickle.loads(pickle.dumps((stream, generator), protocol))
    assert twin.rand() == other.random() == stream.rand() == next_one


@pytest.mark.parametrize("make", [copy.copy, copy.deepcopy, lambda s: pickle.loads(pickle.dumps(s))])
def test_copies_of_derived_objects_keep_what_is_their_own(make):
    original = Named("arrivals", seed=3)
    twin = make(original)
    assert (type(twin), twin.name, twin.rand()) == (Named, "arrivals", original.rand())


def test_a_state_set_in_a_live_stream_restores_it(stream):
    state = stream.__getstate__()
    first = stream.rand()
    stream.__setstate__(state)
    assert stream.rand() == first


def test_an_object_whose_making_failed_can_be_made_after_all():
    stream = unmade()
    with pytest.raises(ValueError):
        stream.__init__("nope")
    stream.__init__("philox", 7)
    assert stream.rand() == tv.RandStream("philox", 7).rand()


PROGRAM = """
import threading, time, tvmathrng as tv
class Slow:
    def __index__(self):
        time.sleep(0.0001)
        return 3
stream = tv.RandStream("philox")
def refused():
    try:
        stream.advance(-1)
    except ValueError:
        pass
"""
AT_WORK = [
    "tv.RandStream().rand(5000)",  # without the interpreter
    "tv.RandStream().rand(Slow())",  # in a call of the program's
    "refused()",  # in an error
]


@pytest.mark.parametrize("work", AT_WORK)
def test_threads_at_work_outlive_the_interpreter(work):
    """Their first calls come at once, too: what they need is loaded by one without stopping the others."""
    ends = f"""
def work():
    while True:
        {work}
for _ in range(3):
    threading.Thread(target=work, daemon=True).start()
time.sleep(0.2)
"""
    done = subprocess.run([sys.executable, "-c", PROGRAM + ends], capture_output=True, text=True, timeout=60)
    assert (done.returncode, done.stderr) == (0, "")
