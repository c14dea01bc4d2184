#pragma once

// Vector kernels of the multiplicative lagged Fibonacci generator with lags 63 and 31.

#include <array>
#include <cstddef>
#include <cstdint>

#include "tfl_rng/kernels/form.h"

namespace tfl_rng::mlfg6331 {

inline constexpr std::size_t kLag = 63;
inline constexpr std::size_t kShortLag = 31;

using Terms = std::array<std::uint64_t, kLag>;

// Makes n steps from the 63 words of `table` (oldest first), which become the last 63. Their draws
// fill out[0, n) unless `out` is null.
void run(Stores stores, Terms& table, double* out, std::size_t n);

// The sums of 63 consecutive terms of x(k) = x(k-63) + x(k-31) modulo 2^64 weighted by the
// coefficients: from `terms`, and from the 62 places after it, into `terms`.
void apply(Terms const& coefficients, Terms& terms);

}  // namespace tfl_rng::mlfg6331
