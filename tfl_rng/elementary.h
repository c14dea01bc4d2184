#pragma once

// exp and log with pinned results: plain IEEE additions, multiplications and integer operations in
// a fixed order, so that every machine and compiler returns the same bits. The C library's own
// functions differ between machines and must not stand on a drawing path. Those of one value
// compute in the floating-point environment of the caller, which streams see to
// (float_environment.h).

#include <cstddef>

#include "tfl_rng/export.h"

namespace tfl_rng {

// exp(x) for -708 <= x <= 708. Largest error seen: 0.533 ulp.
TFL_EXPORT double pinnedExp(double x) noexcept;

// Natural logarithm of a positive, normal x. Largest error seen: 0.534 ulp.
// (Both over 2 * 10^7 arguments in each of several intervals, tools/measure_elementary.cpp.)
TFL_EXPORT double pinnedLog(double x) noexcept;

// Replaces each of values[0, n) by its pinnedLog.
TFL_EXPORT void pinnedLogInPlace(double* values, std::size_t n) noexcept;

}  // namespace tfl_rng
