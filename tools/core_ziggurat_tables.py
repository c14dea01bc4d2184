#!/usr/bin/env python3
"""Prints the tables of the core generators' normal ziggurat, computed with 60 digits.

    tools/core_ziggurat_tables.py > tfl_rng/core_ziggurat_tables.h

256 layers of equal area v under f(x) = exp(-x^2/2). The tail start r is the one for which the
layers, built from the tail up, close exactly at the peak.
"""

from mpmath import mp, mpf, erfc, exp, findroot, log, pi, sqrt

mp.dps = 60
LAYERS = 256


def f(x):
    return exp(-x * x / 2)


def area(r):
    return r * f(r) + sqrt(pi / 2) * erfc(r / sqrt(2))


def edges(r, count):
    """X[255], X[254], ... down to X[255 - count]."""
    v, x = area(r), r
    yield x
    for _ in range(count):
        x = sqrt(-2 * log(f(x) + v / x))
        yield x


def gap(r):
    """How far the top layer is from closing at the peak."""
    x1 = list(edges(r, LAYERS - 2))[-1]
    return f(x1) + area(r) / x1 - 1


def table(name, values):
    print(f"inline constexpr double {name}[{len(values)}] = {{")
    texts = [float(value).hex() for value in values]
    for i in range(0, len(texts), 4):
        print("    " + " ".join(text + "," for text in texts[i:i + 4]))
    print("};\n")


def main():
    r = findroot(gap, mpf("3.6541528853610088"))
    x = [mpf(0)] + list(edges(r, LAYERS - 2))[::-1] + [area(r) / f(r)]
    print("#pragma once\n")
    print("// Tables of core_ziggurat.h. Written by tools/core_ziggurat_tables.py.\n")
    print("// clang-format off\n")
    print("namespace tfl_rng::ziggurat {\n")
    print(f"inline constexpr double kTailStart = {float(r).hex()};")
    print(f"inline constexpr double kInverseTailStart = {float(1 / r).hex()};\n")
    print("// Right edges: kX[0] = 0 at the peak, kX[255] = kTailStart, kX[256] = v / f(kTailStart).")
    table("kX", x)
    print("// kF[i] = exp(-kX[i]^2 / 2).")
    table("kF", [f(value) for value in x])
    print("}  // namespace tfl_rng::ziggurat")


if __name__ == "__main__":
    main()
