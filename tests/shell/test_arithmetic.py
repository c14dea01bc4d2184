#!/usr/bin/env python3
"""What the language computes, held against exact arithmetic: fractions and decimals.

    test_arithmetic.py TVRNG
"""

import itertools
import json
import math
import operator
import pathlib
import random
import struct
import subprocess
import sys
import unittest
from decimal import Decimal
from fractions import Fraction

TVRNG = ""
GOLDEN = pathlib.Path(__file__).resolve().parents[2] / "golden/golden_table.txt"
LOWEST = {"int64": -2**63, "uint64": 0}
HIGHEST = {"int64": 2**63 - 1, "uint64": 2**64 - 1}
SPECIAL = [0.0, -0.0, math.inf, -math.inf, math.nan, 0.5, -0.5, 1.5, 2.5, 0.25, 5e-324, 1e308,
           2.0**63, 2.0**64, -2.0**63, 2.0**65]


def evaluate(program):
    """The elements of the value of a program's last statement."""
    done = subprocess.run([TVRNG, "--json", "/dev/stdin"], input=program, capture_output=True,
                          text=True, timeout=60)
    assert done.returncode == 0, done.stderr
    return json.loads(done.stdout)["data"]


def literal(value, of="double"):
    if of != "double":
        return f"0x{value % 2**64:X}{'s' if of == 'int64' else 'u'}64"
    sign = "-" if math.copysign(1, value) < 0 else ""
    size = "NaN" if math.isnan(value) else "Inf" if math.isinf(value) else repr(abs(value))
    return f"({sign}{size})"


def row(values, of="double"):
    return "[" + " ".join(literal(value, of) for value in values) + "]"


def rounded(value, of):
    """An exact number, or NaN or an infinity, as an integer: halves away from 0, NaN as 0."""
    if isinstance(value, float) and not math.isfinite(value):
        return 0 if math.isnan(value) else HIGHEST[of] if value > 0 else LOWEST[of]
    size = int((2 * abs(value) + 1) // 2)
    return max(LOWEST[of], min(HIGHEST[of], size if value >= 0 else -size))


def exact(work):
    """work(x, y) in fractions; with NaN or an infinity, where doubles are exact too, in those."""
    def on(x, y):
        number = Fraction if math.isfinite(x) and math.isfinite(y) else float
        return work(number(x), number(y))
    return on


def quotient(x, y):
    if y != 0:
        return exact(operator.truediv)(x, y)
    return math.nan if x == 0 or math.isnan(x) else math.copysign(math.inf, x) * math.copysign(1, y)


def remainder(x, y):
    if math.isnan(y) or not math.isfinite(x):
        return math.nan
    if y == 0 or math.isinf(y):
        return Fraction(x)
    rest = abs(Fraction(x)) % abs(Fraction(y))
    return -rest if x < 0 else rest


def modulus(x, y):
    rest = remainder(x, y)
    if y == 0 or rest == 0 or math.isnan(rest) or (x < 0) == (y < 0):
        return rest
    return y if math.isinf(y) else rest + Fraction(y)


ARITHMETIC = {"a + b": exact(operator.add), "a - b": exact(operator.sub),
              "a .* b": exact(operator.mul), "a ./ b": quotient, "b .\\ a": quotient, "rem(a,b)": remainder,
              "mod(a,b)": modulus}
COMPARISONS = {"a == b": operator.eq, "a ~= b": operator.ne, "a < b": operator.lt,
               "a <= b": operator.le, "a > b": operator.gt, "a >= b": operator.ge}


class WideIntegers(unittest.TestCase):
    def setUp(self):
        self.random = random.Random(1)

    def integer(self, of):
        if self.random.random() < 0.1:
            return self.random.choice([0, 1, 2, 3, HIGHEST[of], LOWEST[of], LOWEST[of] + 1])
        value = self.random.getrandbits(self.random.randint(1, 64))
        sign = -1 if of == "int64" and self.random.random() < 0.5 else 1
        return max(LOWEST[of], min(HIGHEST[of], sign * value))

    def double(self, _):
        kind = self.random.random()
        if kind < 0.1:
            return self.random.choice(SPECIAL)
        if kind < 0.4:
            return self.random.uniform(-4, 4)
        if kind < 0.6:
            return self.random.randint(-2**40, 2**40) / 2**self.random.randint(0, 30)
        return self.random.choice([-1, 1]) * math.ldexp(self.random.random(),
                                                        self.random.randint(-80, 130))

    def operands(self):
        for of in HIGHEST:
            for left, right in ((of, "double"), ("double", of), (of, of)):
                xs, ys = ([self.double(of) if kind == "double" else self.integer(of)
                           for _ in range(400)] for kind in (left, right))
                yield of, xs, ys, f"a = {row(xs, left)}; b = {row(ys, right)}; "

    def check(self, program, cases, expected):
        for case, got, wanted in zip(cases, evaluate(program), expected, strict=True):
            self.assertEqual(int(got), wanted, (program[-20:], case))

    def test_products_are_rounded_once(self):
        xs = [self.random.randint(2**59, 2**62) for _ in range(2000)]
        ys = [self.random.random() for _ in xs]
        self.check(f"{row(xs, 'int64')} .* {row(ys)}", zip(xs, ys),
                   [rounded(Fraction(x) * Fraction(y), "int64") for x, y in zip(xs, ys)])

    def test_golden_rows_are_those_of_exact_arithmetic(self):
        ks = range(1, 2001)
        ys = [k * 7919 % 10007 / 10007 for k in ks]
        zs = [(k * 104729 % 20011 - 10005) / 2**7 for k in ks]
        a = [2**59 + k * 1729382256910270 for k in ks]
        expected = {
            "products": [rounded(Fraction(x) * Fraction(y), "int64") for x, y in zip(a, ys)],
            "quotients": [rounded(quotient(3 * x, z), "uint64") for x, z in zip(a, zs)],
            "sums": [rounded(x + Fraction(z), "int64") for x, z in zip(a, zs)],
            "moduli": [rounded(modulus(x, z), "int64") for x, z in zip(a, zs)],
            "remainders": [rounded(remainder(-x, y * 1e6), "int64") for x, y in zip(a, ys)],
            "running-sums": list(itertools.accumulate(ys)),
            "integer-sums": [rounded(sum, "int64")
                             for sum in itertools.accumulate(x - 2**60 for x in a)],
        }
        for name, values in expected.items():
            of = "d" if isinstance(values[0], float) else "Q" if name == "quotients" else "q"
            hashed = 0xCBF29CE484222325
            for byte in struct.pack(f"<{len(values)}{of}", *values):
                hashed = (hashed ^ byte) * 0x100000001B3 % 2**64
            self.assertIn(f"language {name} {hashed:016x}\n", GOLDEN.read_text(), name)

    def test_arithmetic(self):
        for of, xs, ys, given in self.operands():
            for operation, work in ARITHMETIC.items():
                self.check(given + operation, zip(xs, ys),
                           [rounded(work(x, y), of) for x, y in zip(xs, ys)])

    def test_comparisons(self):
        for _, xs, ys, given in self.operands():
            for operation, work in COMPARISONS.items():
                self.check(given + operation, zip(xs, ys),
                           [int(work(x, y)) for x, y in zip(xs, ys)])
        xs = [self.integer("int64") for _ in range(400)]
        ys = [self.random.choice([self.integer("uint64"), abs(x)]) for x in xs]
        self.check(f"{row(xs, 'int64')} <= {row(ys, 'uint64')}", zip(xs, ys),
                   [int(x <= y) for x, y in zip(xs, ys)])

    def test_reductions(self):
        for of in HIGHEST:
            for _ in range(20):
                values = [self.integer(of) for _ in range(self.random.randint(1, 12))]
                sums = [sum(values[:i + 1]) for i in range(len(values))]
                for function, expected in (("sum", sums[-1:]), ("cumsum", sums),
                                           ("prod", [math.prod(values)])):
                    self.check(f"{function}({row(values, of)})", [values] * len(expected),
                               [rounded(value, of) for value in expected])

    def test_whole_powers(self):
        for of in HIGHEST:
            bases = [x for x in (0, 1, 2, 3, 7, 10, 15, -1, -2, -3, -10) if x >= LOWEST[of]]
            pairs = [(x, n) for x in bases for n in (*range(-3, 5), 19, 20, 40, 62, 63, 64, 65)]
            self.check(f"{row([x for x, _ in pairs], of)} .^ {row([float(n) for _, n in pairs])}",
                       pairs, [rounded(math.inf if x == 0 and n < 0 else Fraction(x)**n, of)
                               for x, n in pairs])


class Powers(unittest.TestCase):
    def test_whole_powers_are_the_nearest_doubles(self):
        numbers = random.Random(2)
        pairs = [(numbers.choice([numbers.uniform(-3, 3), numbers.uniform(0.9, 1.1), 10.0, 0.1,
                                  numbers.uniform(0, 1e10)]),
                  numbers.choice([numbers.randint(-20, 20), numbers.randint(-300, 300)]))
                 for _ in range(1000)]
        got = evaluate(f"{row([x for x, _ in pairs])} .^ {row([float(n) for _, n in pairs])}")
        for (x, n), power in zip(pairs, got, strict=True):
            exact = Fraction(x)**n
            try:
                nearest = exact.numerator / exact.denominator
            except OverflowError:
                nearest = math.copysign(math.inf, 1 if exact > 0 else -1)
            self.assertEqual(float(power), nearest, (x, n))


class Ranges(unittest.TestCase):
    def test_everyday_ranges_have_every_element(self):
        starts = "0 0.1 0.2 0.5 1 9.9 10 -1 -0.3 100.1 2.5 0.01".split()
        steps = "0.01 0.05 0.1 0.2 0.25 -0.3 0.001 1.1".split()
        cases = [(Decimal(start), Decimal(step), count)
                 for start in starts for step in steps for count in (1, 2, 3, 7, 10, 99)]
        texts = [f"{start}:{step}:{start + count * step}" for start, step, count in cases]
        counts = evaluate(f"c = {{{','.join(texts)}}}; n = zeros(1,numel(c)); "
                          "for k = 1:numel(c), n(k) = numel(c{k}); end, n")
        self.assertEqual(dict(zip(texts, counts, strict=True)),
                         dict(zip(texts, [count + 1 for _, _, count in cases])))
        elements = iter(evaluate(f"[{' '.join(texts)}]"))
        for text, (start, step, count) in zip(texts, cases):
            got = [next(elements) for _ in range(count + 1)]
            exact = [start + step * k for k in range(count + 1)]
            size = math.ulp(max(abs(float(exact[0])), abs(float(exact[-1]))))
            self.assertEqual((got[0], got[-1]), (float(exact[0]), float(exact[-1])), text)
            for value, wanted in zip(got, exact):
                self.assertLessEqual(abs(value - float(wanted)), size, (text, wanted))


if __name__ == "__main__":
    TVRNG = sys.argv.pop(1)
    unittest.main()
