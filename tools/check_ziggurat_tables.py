#!/usr/bin/env python3
"""Compares the literals of the stream's ziggurat tables with the rule that they come from.

    tools/check_ziggurat_tables.py FILE

FILE is rng/ziggurat_tables.cpp (arrays kX and kF) or a known-answer file (rows "i X[i] F[i] ...").

The rule, for 256 layers of equal area v under f(x) = exp(-x^2/2):
    X[255] = r, F[255] = f(r), X[256] = v / f(r), F[256] = f(X[256]),
    F[i-1] = F[i] + v / X[i], X[i-1] = sqrt(-2 ln F[i-1]) for i = 255 ... 2, X[0] = 0, F[0] = 1,
in double arithmetic with exp and ln correctly rounded, printed to 15 significant digits.
"""

import decimal
import math
import pathlib
import re
import sys

LAYERS = 256
R = 3.6541528853610088
V = 0.004928673233974658

decimal.getcontext().prec = 40


def rounded_exp(x):
    return float(decimal.Decimal(x).exp())


def rounded_ln(x):
    return float(decimal.Decimal(x).ln())


def tables_by_rule():
    x, f = [0.0] * (LAYERS + 1), [1.0] * (LAYERS + 1)
    x[255], f[255] = R, rounded_exp(-0.5 * R * R)
    x[256] = V / f[255]
    f[256] = rounded_exp(-0.5 * x[256] * x[256])
    for i in range(255, 1, -1):
        f[i - 1] = f[i] + V / x[i]
        x[i - 1] = math.sqrt(-2.0 * rounded_ln(f[i - 1]))
    return x, f


def read_source(text):
    """The initialisers of the arrays kX and kF."""
    columns = []
    for name in ("kX", "kF"):
        body = re.search(rf"\b{name}\s*=?\s*\{{([^}}]*)\}}", text)
        if not body:
            sys.exit(f"no array {name} found")
        columns.append([literal.strip() for literal in body[1].split(",") if literal.strip()])
    return columns


def read_rows(text):
    """Columns 2 and 3 of the rows of a known-answer file."""
    rows = [line.split() for line in text.splitlines() if line and line[0] not in "#@"]
    return [[row[1] for row in rows], [row[2] for row in rows]]


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    path = pathlib.Path(sys.argv[1])
    text = path.read_text(encoding="utf-8")
    found = read_source(text) if path.suffix == ".cpp" else read_rows(text)
    faults = 0
    for name, literals, rule in zip("XF", found, tables_by_rule()):
        if len(literals) != LAYERS + 1:
            print(f"{name}: {len(literals)} values, expected {LAYERS + 1}")
            faults += 1
        for i, (literal, value) in enumerate(zip(literals, rule)):
            # Equal as doubles, which lets "1.0" stand for "1" and nothing else.
            if float(literal) != float(f"{value:.15g}"):
                print(f"{name}[{i}] is {literal}, by the rule {value:.15g}")
                faults += 1
    if faults:
        return 1
    print(f"{path.name}: all {2 * (LAYERS + 1)} literals agree with the rule")
    return 0


if __name__ == "__main__":
    sys.exit(main())
