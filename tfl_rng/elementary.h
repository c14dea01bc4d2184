#pragma once

// exp and log with pinned results: plain IEEE additions, multiplications, divisions and integer
// operations in a fixed order, so that every machine and compiler returns the same bits. The C
// library's own functions differ between machines and must not stand on a drawing path.

namespace tfl_rng {

// exp(x) for -708 <= x <= 708. Error below 0.55 ulp.
double pinnedExp(double x) noexcept;

// Natural logarithm of a positive, normal x. Error below 0.55 ulp.
double pinnedLog(double x) noexcept;

}  // namespace tfl_rng
