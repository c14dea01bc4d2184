#include "tfl_rng/elementary.h"

#include <bit>
#include <cstdint>

#include "tfl_rng/elementary_exp.h"
#include "tfl_rng/elementary_tables.h"
#include "tfl_rng/plain_arithmetic.h"  // IWYU pragma: keep

namespace tfl_rng {

using namespace elementary;

// Every line of the logarithm is one rounded operation a time, in the order of the parentheses; its
// vector form in kernels/elementary-inl.h repeats it line by line.

double pinnedLog(double x) noexcept {
  // x = 2^k m with m in the interval of table row i, split at 1 so that log(1 + tiny) is exact.
  const std::int64_t bits = std::bit_cast<std::int64_t>(x);
  const std::int64_t fromStart = bits - kLogStartBits;
  const std::int64_t i = (fromStart >> 48) & 15;
  const double k = static_cast<double>(fromStart >> 52);
  const std::int64_t mBits = bits - (fromStart & kExponentBits);
  const double m = std::bit_cast<double>(mBits);

  // r + rError = m c - 1 without error: c has 10 bits, the two halves of m at most 27.
  const double mHigh = std::bit_cast<double>(mBits & kHighHalf);
  const double high = mHigh * kLogTable.c[i] - 1;
  const double low = (m - mHigh) * kLogTable.c[i];
  const double r = high + low;
  const double rError = low - (r - high);

  // sum + sumError = k log(2) - log(c) + r, the product and the first sum being exact.
  const double base = k * kLn2High + kLogTable.high[i];
  const double sum = base + r;
  const double sumError = r - (sum - base);

  // log(1 + r) = r - r^2/2 + r^3 q(r) by its series; |r| < 0.0313.
  const double r2 = r * r;
  const double r4 = r2 * r2;
  const double q01 = 1.0 / 3 - r * (1.0 / 4);
  const double q23 = 1.0 / 5 - r * (1.0 / 6);
  const double q45 = 1.0 / 7 - r * (1.0 / 8);
  const double q67 = 1.0 / 9 - r * (1.0 / 10);
  const double q89 = 1.0 / 11 - r * (1.0 / 12);
  const double q = (q01 + r2 * q23) + r4 * ((q45 + r2 * q67) + r4 * q89);

  const double errors = (sumError + rError) + (k * kLn2Low + kLogTable.low[i]);
  return sum + ((errors - 0.5 * r2) + (r * r2) * q);
}

double pinnedExp(double x) noexcept { return elementary::exp(x); }

}  // namespace tfl_rng
