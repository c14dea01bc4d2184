#pragma once

// Powers of numbers. Whole exponents go by multiplication, in twice the digits of a double for real
// numbers; other powers are the C library's.

#include "language/operators.h"

namespace language {

// NaN for a negative base with a fraction in the exponent; otherwise as std::pow.
double realPower(double base, double exponent);
// z^0 is 1 for every z.
std::complex<double> complexPower(std::complex<double> base, std::complex<double> exponent);

// base .^ exponent. A negative base with a fraction in the exponent makes the result complex, and
// is refused where the result is of an integer class.
txArrayPtr applyPower(Operator op, txArray const& base, txArray const& exponent);

}  // namespace language
