#pragma once

// pinnedExp of elementary.h where a call would cost more than the function. Every line is one
// rounded operation a time, in the order of the parentheses.

#include <bit>
#include <cstdint>

#include "tfl_rng/elementary_tables.h"

namespace tfl_rng::elementary {

inline double exp(double x) noexcept {
  // x = n log(2)/32 + r, n the nearest integer: adding and taking away 1.5 * 2^52 rounds.
  const double shifted = x * kExpSteps + kRoundToInteger;
  const double steps = shifted - kRoundToInteger;
  const std::int64_t n =
      std::bit_cast<std::int64_t>(shifted) - std::bit_cast<std::int64_t>(kRoundToInteger);
  const double r = (x - steps * kExpStepHigh) - steps * kExpStepLow;

  // exp(r) - 1 by its series; |r| < 0.0109.
  const double r2 = r * r;
  const double p01 = 1.0 / 2 + r * (1.0 / 6);
  const double p23 = 1.0 / 24 + r * (1.0 / 120);
  const double p45 = 1.0 / 720 + r * (1.0 / 5040);
  const double p = r + r2 * ((p01 + r2 * p23) + (r2 * r2) * p45);

  // 2^(n/32) exp(r), the power of two last: it is exact.
  const std::int64_t j = n & 31;
  const double power = std::bit_cast<double>(((n >> 5) + 1023) << 52);
  return (kExpTable.high[j] + (kExpTable.low[j] + kExpTable.high[j] * p)) * power;
}

}  // namespace tfl_rng::elementary
