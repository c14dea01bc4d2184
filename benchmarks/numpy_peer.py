#!/usr/bin/env python3
"""NumPy's generators on the work of tvbench, reported in the same JSON form.

    benchmarks/numpy_peer.py --benchmark_out=FILE [--benchmark_repetitions=N]

Fills go into an existing array where NumPy offers that. compare.py --numpy calls this.
"""

import argparse
import json
import random
import time

import numpy

SIZES = (100, 10_000, 1_000_000, 10_000_000)
COUNTS = (24, 10_000, 100_000)
POPULATION = 1_000_000
MIN_TIME_NS = 50_000_000


def fills():
    """Yields (work, generator, n, call) for each benchmark."""
    buffers = {"double": numpy.ones(max(SIZES)), "single": numpy.ones(max(SIZES), numpy.float32)}
    generators = {
        "mt19937ar": numpy.random.Generator(numpy.random.MT19937(0)),
        "philox4x32_10": numpy.random.Generator(numpy.random.Philox(0)),
    }
    for n in SIZES:
        double, single = buffers["double"][:n], buffers["single"][:n]
        for name, g in generators.items():
            yield "uniform double", name, n, lambda g=g, out=double: g.random(out=out)
            yield "uniform single", name, n, lambda g=g, out=single: g.random(
                dtype=numpy.float32, out=out
            )
            yield "integers 1 to 6 as int32", name, n, lambda g=g, n=n: g.integers(
                1, 7, n, numpy.int32
            )
            yield "integers 1 to 6 as double", name, n, lambda g=g, n=n: g.integers(1, 7, n)
            yield "normal, Ziggurat", name, n, lambda g=g, out=double: g.standard_normal(out=out)
    twister = generators["mt19937ar"]
    for n in SIZES:
        yield "permutation of n by sorting", "mt19937ar", n, lambda n=n: numpy.argsort(
            twister.random(n)
        )
        yield "permutation of n by shuffling", "mt19937ar", n, lambda n=n: twister.permutation(n)
    for k in COUNTS:
        yield f"k of {POPULATION:,} in random order", "mt19937ar", k, lambda k=k: twister.choice(
            POPULATION, k, replace=False
        )
    for name, g in generators.items():
        yield "one uniform a call", name, 1, g.random
        yield "one normal a call", name, 1, g.standard_normal


def calls_for(call):
    """How many calls take about MIN_TIME_NS."""
    calls = 1
    while True:
        start = time.perf_counter_ns()
        for _ in range(calls):
            call()
        taken = time.perf_counter_ns() - start
        if taken > MIN_TIME_NS / 5:
            return max(1, round(calls * MIN_TIME_NS / taken))
        calls *= 4


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--benchmark_out", required=True)
    parser.add_argument("--benchmark_out_format", choices=["json"], default="json")
    parser.add_argument("--benchmark_repetitions", type=int, default=9)
    args = parser.parse_args()

    todo = [(*fill, calls_for(fill[3])) for fill in fills()]
    results = []
    for _ in range(args.benchmark_repetitions):
        random.shuffle(todo)
        for work, generator, n, call, calls in todo:
            start = time.process_time_ns()
            for _ in range(calls):
                call()
            results.append({
                "run_name": f"{work}/{generator}/numpy {numpy.__version__}/{n}",
                "run_type": "iteration",
                "cpu_time": (time.process_time_ns() - start) / calls,
                "time_unit": "ns",
                "values": n,
            })
    with open(args.benchmark_out, "w", encoding="utf-8") as out:
        json.dump({"benchmarks": results}, out)


if __name__ == "__main__":
    main()
