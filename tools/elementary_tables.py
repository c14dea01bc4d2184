#!/usr/bin/env python3
"""Prints the tables of tfl_rng/elementary_tables.h, computed with 200 bits.

    tools/elementary_tables.py | clang-format > tfl_rng/elementary_tables.h
"""

from mpmath import mp, mpf, exp, floor, ln, log, nint

mp.prec = 200

LOG_ROWS = 16
EXP_ROWS = 32
GRID = mpf(2) ** -42       # high parts are multiples of this, so that k * kLn2High is exact
LOG_START = mpf("0.671875")


def fixed(x, grid):
    return nint(x / grid) * grid


def double(x):
    return float(x).hex()


def log_rows():
    """Interval i of [0.671875, 1.34375): sixteenths of a binade, the step doubling at 1."""
    low = LOG_START
    for _ in range(LOG_ROWS):
        step = mpf(1) / 32 if low < 1 else mpf(1) / 16
        high = low + step
        if low < 1 < high:  # the interval around 1 reaches into the next binade
            high = 1 + (high - 1) * 2
        c = mpf(1) if low < 1 < high else fixed(2 / (low + high), mpf(1) / 512)
        yield low, high, c
        low = high


def main():
    ln2_high = fixed(ln(2), GRID)
    exp_step = ln(2) / EXP_ROWS
    exp_step_high = fixed(exp_step, GRID)
    print("#pragma once\n")
    print("// Constants of elementary.cpp. Written by tools/elementary_tables.py.\n")
    print("#include <cstdint>\n")
    print("namespace tfl_rng::elementary {\n")
    print("inline constexpr std::int64_t kLogStartBits = 0x3fe5800000000000;  // of 0.671875")
    print("inline constexpr std::int64_t kExponentBits = -(std::int64_t{1} << 52);  // sign and exponent")
    print("inline constexpr std::int64_t kHighHalf = -(std::int64_t{1} << 27);  // 26 significant bits")
    print("inline constexpr double kRoundToInteger = 0x1.8p+52;\n")
    print(f"inline constexpr double kLn2High = {double(ln2_high)};  // a multiple of 2^-42")
    print(f"inline constexpr double kLn2Low = {double(ln(2) - ln2_high)};")
    print()
    print("// Row i serves the i-th of 16 intervals of [0.671875, 1.34375), the one around 1 with c = 1.")
    print("// c: reciprocal of a point of the interval, in 10 bits.")
    print("// high + low = -log(c); high is a multiple of 2^-42.")
    print("inline constexpr struct {")
    print("  double c[16], high[16], low[16];")
    print("} kLogTable = {")
    columns = [[], [], []]
    widest = 0
    for low, high, c in log_rows():
        widest = max(widest, abs(low * c - 1), abs(high * c - 1))
        value = -ln(c)
        top = fixed(value, GRID)
        for column, x in zip(columns, (c, top, value - top)):
            column.append(double(x))
    for column in columns:
        print("    {" + ",\n     ".join(column) + "},")
    print("};")
    print(f"// |m * c - 1| reaches {float(widest):.5f}.")
    print()
    print("// 2^(j/32) = high[j] + low[j].")
    print("inline constexpr struct {")
    print("  double high[32], low[32];")
    print("} kExpTable = {")
    highs, lows = [], []
    for j in range(EXP_ROWS):
        value = mpf(2) ** (mpf(j) / EXP_ROWS)
        highs.append(float(value))
        lows.append(double(value - mpf(highs[-1])))
    print("    {" + ",\n     ".join(h.hex() for h in highs) + "},")
    print("    {" + ",\n     ".join(lows) + "},")
    print("};")
    print(f"inline constexpr double kExpSteps = {double(1 / exp_step)};  // 32 / log(2)")
    print(f"inline constexpr double kExpStepHigh = {double(exp_step_high)};  // a multiple of 2^-42")
    print(f"inline constexpr double kExpStepLow = {double(exp_step - exp_step_high)};")
    print("\n}  // namespace tfl_rng::elementary")


if __name__ == "__main__":
    main()
