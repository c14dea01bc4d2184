#pragma once

// The quantile function of the standard normal distribution.
// Source: M. J. Wichura, Algorithm AS 241 (PPND16), Applied Statistics 37 (1988) 477-484, with
// Horner's rule from the highest coefficient and the central form as (q * numerator) / denominator.

#include <cstddef>

#include "tfl_rng/export.h"

namespace tfl_rng {

// The normal quantile of u in (0,1), to about 16 digits.
TFL_EXPORT double normalQuantile(double u) noexcept;

// Replaces each of values[0, n) by its normal quantile.
TFL_EXPORT void normalQuantileInPlace(double* values, std::size_t n) noexcept;

}  // namespace tfl_rng
