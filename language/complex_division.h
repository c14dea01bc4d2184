#pragma once

#include <cmath>
#include <complex>

namespace language {

// By Smith's method (1962): only the basic operations, so that the bits are the same everywhere,
// which those of the compilers' own functions are not. Division by a real or an imaginary number is
// that of the parts.
template <class T>
std::complex<T> divide(std::complex<T> left, std::complex<T> right) {
  T const a = left.real();
  T const b = left.imag();
  T const c = right.real();
  T const d = right.imag();
  if (d == T(0)) return {a / c, b / c};
  if (c == T(0)) return {b / d, -a / d};
  bool const isFar = std::isinf(c) || std::isinf(d);
  if (isFar && std::isfinite(a) && std::isfinite(b)) return T(0);
  if (std::fabs(c) >= std::fabs(d)) {
    T const ratio = d / c;
    T const divisor = c + d * ratio;
    return {(a + b * ratio) / divisor, (b - a * ratio) / divisor};
  }
  T const ratio = c / d;
  T const divisor = c * ratio + d;
  return {(a * ratio + b) / divisor, (b * ratio - a) / divisor};
}

}  // namespace language
