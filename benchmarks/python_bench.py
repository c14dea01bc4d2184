#!/usr/bin/env python3
"""Times of the Python package beside the C++ library behind it and NumPy's generators.

    PYTHONPATH=build/python /usr/bin/python3 benchmarks/python_bench.py [--rounds N]

All contestants of a table take turns in one process; a figure is the median of the rounds. C++ is
the library's own fill, called into the same array by ctypes, whose call takes about a microsecond.
"""

import argparse
import ctypes
import random
import statistics
import time

import numpy as np

import tvmathrng as tv

N = 1_000_000
GENERATORS = ["mt19937ar", "philox4x32_10"]


def library():
    """The shared library that this process has loaded already."""
    with open("/proc/self/maps", encoding="utf-8") as maps:
        path = next(line.split()[-1] for line in maps if "libtvmathrng" in line)
    lib = ctypes.CDLL(path)
    lib.mrCreateRNGStream.restype = ctypes.c_void_p
    return lib


def cpp_fills(out):
    """Yields (name, fill of `out` by randstream::randuFcn<double>) for each generator."""
    lib = library()
    fill = lib["_ZN10randstream8randuFcnIdEEvPT_m"]
    fill.argtypes = [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_ulong]
    fill.restype = None
    for name in GENERATORS:
        stream = lib.mrCreateRNGStream(name.encode(), ctypes.c_ulong(1), ctypes.c_ulong(0), 0, None, ctypes.c_ulong(0))
        yield f"C++ {name}", lambda stream=stream: fill(stream, out.ctypes.data, out.size)


def numpy_generators():
    for kind in (np.random.MT19937, np.random.Philox, np.random.PCG64):
        yield kind.__name__, np.random.Generator(kind(0))


def distributions(out):
    """Yields (title, what fills `out`, or as many integers) for NumPy's own distributions."""
    yield "`random`", lambda g: g.random(out=out)
    yield "`standard_normal`", lambda g: g.standard_normal(out=out)
    yield "`integers(0, 100)`", lambda g: g.integers(0, 100, out.size)
    yield "`standard_exponential`", lambda g: g.standard_exponential(out=out)


def race(contestants, calls, rounds):
    """The median time of one call in nanoseconds, by name; turns in a new order each round."""
    times = {name: [] for name in contestants}
    order = list(contestants)
    for _ in range(rounds + 1):
        random.shuffle(order)
        for name in order:
            call = contestants[name]
            start = time.perf_counter_ns()
            for _ in range(calls):
                call()
            times[name].append((time.perf_counter_ns() - start) / calls)
    return {name: statistics.median(of[1:]) for name, of in times.items()}  # the first warms up


def show(title, medians, divisor, unit):
    print(f"\n{title}\n\n| | {unit} |\n|---|---:|")
    for name, median in medians.items():
        print(f"| {name} | {median / divisor:.3g} |")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--rounds", type=int, default=31)
    rounds = parser.parse_args().rounds

    out = np.ones(N)
    fills = dict(cpp_fills(out))
    for name in GENERATORS:
        fills[f"Python {name}"] = lambda s=tv.RandStream(name): s.rand(out=out)
    for name, g in numpy_generators():
        fills[f"NumPy {name}"] = lambda g=g: g.random(out=out)
    medians = race(fills, 1, rounds)
    show(f"{N} uniform doubles into an array", medians, N, "ns a value")
    for name in GENERATORS:
        ratio = medians[f"Python {name}"] / medians[f"C++ {name}"]
        print(f"\n{name}: Python takes {ratio:.3f} times what C++ takes")

    kinds = [np.random.MT19937, tv.MT19937ar, np.random.Philox, tv.Philox4x32]
    generators = {kind.__name__: np.random.Generator(kind(1)) for kind in kinds}
    part = out[: N // 20]
    print(f"\nNumPy's distributions, ns a value\n\n| | {' | '.join(generators)} |\n|---" + "|---:" * 4 + "|")
    for title, fill in distributions(part):
        medians = race({n: lambda g=g: fill(g) for n, g in generators.items()}, 1, 5 * rounds)
        print(f"| {title} | " + " | ".join(f"{m / part.size:.3g}" for m in medians.values()) + " |")

    scalars = {f"s.rand(), {name}": tv.RandStream(name).rand for name in GENERATORS}
    scalars["s.randn(), mt19937ar"] = tv.RandStream().randn
    scalars["tv.rand()"] = tv.rand
    for name, g in numpy_generators():
        scalars[f"rng.random(), NumPy {name}"] = g.random
    scalars["rng.random() on philox4x32_10"] = np.random.Generator(tv.Philox4x32(0)).random
    show("One number a call", race(scalars, 10_000, rounds), 1, "ns a call")


if __name__ == "__main__":
    main()
