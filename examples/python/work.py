"""A simulation in work items, each of which draws from its own stream: what the examples share."""

import hashlib

import numpy as np

import tvmathrng as tv

ITEMS = 24
FAMILY = tv.Family(42, "philox4x32_10")


def work(item):
    """A random walk and its maximum: one draws by the library, the other by NumPy's Generator."""
    walk = FAMILY[item].randn(10_000).cumsum()
    waits = FAMILY.rng(ITEMS + item).exponential(size=100)
    return item, float(walk.max()), float(waits.sum())


def report(results):
    """Prints one hash of all results, in the order of the items."""
    values = np.array(sorted(results))
    assert values.shape == (ITEMS, 3)
    print(hashlib.sha256(values.tobytes()).hexdigest()[:16])
