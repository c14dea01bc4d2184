#include "tfl_rng/normal_quantile.h"

#include <algorithm>
#include <cmath>

#include "tfl_rng/elementary.h"
#include "tfl_rng/normal_quantile_coefficients.h"

namespace tfl_rng {
namespace {

using namespace quantile;

// Horner's rule from the highest coefficient.
double polynomial(double const (&coefficients)[8], double x) {
  double sum = coefficients[7];
  for (int i = 6; i >= 0; --i) sum = sum * x + coefficients[i];
  return sum;
}

}  // namespace

double normalQuantile(double u) noexcept {
  const double q = u - 0.5;
  if (std::fabs(q) <= kCentralHalfWidth) {
    const double r = kCentralShift - q * q;
    return q * polynomial(kCentral.numerator, r) / polynomial(kCentral.denominator, r);
  }
  const double r = std::sqrt(-pinnedLog(std::min(u, 1 - u)));
  Rational const& tail = r <= kFarTail ? kIntermediate : kFar;
  const double x = r - tail.shift;
  const double magnitude = polynomial(tail.numerator, x) / polynomial(tail.denominator, x);
  return q < 0 ? -magnitude : magnitude;
}

}  // namespace tfl_rng
