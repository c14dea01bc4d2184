#include "language/powers.h"

#include <algorithm>

#include "embedded_host/array.h"
#include "language/broadcast.h"
#include "language/complex_division.h"
#include "language/fault.h"
#include "language/operands.h"

namespace language {

namespace {

using embedded_host::makeUninitialized;

bool isWhole(double x) { return std::isfinite(x) && x == std::floor(x); }
bool hasFraction(double x) { return std::isfinite(x) && x != std::floor(x); }

// (high + low) * 2^exponent with high from 0.5 to 1: a positive number of twice a double's digits.
struct Twice {
  double high;
  double low;
  std::int64_t exponent;
};

Twice multiply(Twice const& a, Twice const& b) {
  double const high = a.high * b.high;
  double const low = std::fma(a.high, b.high, -high) + (a.high * b.low + a.low * b.high);
  double const sum = high + low;
  double const rest = low - (sum - high);
  std::int64_t const exponent = a.exponent + b.exponent;
  return sum < 0.5 ? Twice{2 * sum, 2 * rest, exponent - 1} : Twice{sum, rest, exponent};
}

// x^count, or its inverse.
double repeated(double x, std::uint64_t count, bool inverse) {
  int exponent = 0;
  double const fraction = std::frexp(std::fabs(x), &exponent);
  Twice factor{fraction, 0, exponent};
  Twice power{0.5, 0, 1};
  for (std::uint64_t left = count; left != 0; left /= 2) {
    if (left % 2 == 1) power = multiply(power, factor);
    if (left > 1) factor = multiply(factor, factor);
  }
  double magnitude = power.high;
  if (inverse) {
    double const quotient = 1 / power.high;
    double const rest = std::fma(-quotient, power.high, 1) - quotient * power.low;
    magnitude = quotient + quotient * rest;
    power.exponent = -power.exponent;
  }
  constexpr std::int64_t kBeyond = 1 << 16;  // every double is 0 or infinite there
  double const result =
      std::ldexp(magnitude, static_cast<int>(std::clamp(power.exponent, -kBeyond, kBeyond)));
  return x < 0 && count % 2 == 1 ? -result : result;
}

Complex repeated(Complex z, std::uint64_t count) {
  Complex power = 1;
  for (std::uint64_t left = count; left != 0; left /= 2) {
    if (left % 2 == 1) power *= z;
    if (left > 1) z *= z;
  }
  return power;
}

Complex wholePower(Complex z, double exponent) {
  auto const count = static_cast<std::uint64_t>(std::fabs(exponent));
  if (exponent >= 0) return repeated(z, count);
  Complex const power = repeated(z, count);
  bool const usable = std::isfinite(power.real()) && std::isfinite(power.imag()) && power != 0.0;
  return usable ? divide(Complex(1), power) : repeated(divide(Complex(1), z), count);
}

// (-magnitude)^exponent. Halves and quarters of a turn are exact.
Complex powerOfNegative(double magnitude, double exponent) {
  double const size = realPower(magnitude, exponent);
  double const turn = std::fmod(exponent, 2.0);  // in half turns
  double const angle = turn * 3.141592653589793;
  bool const quarter = std::fabs(turn) == 0.5 || std::fabs(turn) == 1.5;
  double const sine = quarter ? std::copysign(1.0, std::sin(angle)) : std::sin(angle);
  return {quarter ? 0.0 : size * std::cos(angle), size * sine};
}

void refuseFraction(double base, double exponent) {
  if (base < 0 && hasFraction(exponent)) {
    raiseFault("operands", "A negative integer has no power with a fraction.",
               "convert it: double(x) has complex powers");
  }
}

template <class T>
txArrayPtr widePower(Broadcast const& walk, txArray const& base, txArray const& exponent) {
  Operand<Exact> const a(base);
  Operand<Exact> const b(exponent);
  txArrayPtr result = makeUninitialized(walk.result(), embedded_host::kClassOf<T>);
  walk.run(result->dataAs<T>(), a.data(), b.data(), [](Exact const& x, Exact const& y) {
    if (x.isWhole() && y.isWhole()) return wholePower(x, y).as<T>();
    refuseFraction(nearestDouble(x), nearestDouble(y));
    return castElement<T>(realPower(nearestDouble(x), nearestDouble(y)));
  });
  return result;
}

}  // namespace

double realPower(double base, double exponent) {
  // Within these bounds the digits that the multiplications lose are not missed.
  constexpr double kMostSteps = 0x1p31;
  if (exponent == 2) return base * base;
  if (exponent == 0.5 && base > 0) return std::sqrt(base);
  if (!isWhole(exponent) || std::fabs(exponent) > kMostSteps || base == 0 || !std::isfinite(base)) {
    return std::pow(base, exponent);
  }
  return repeated(base, static_cast<std::uint64_t>(std::fabs(exponent)), exponent < 0);
}

Complex complexPower(Complex base, Complex exponent) {
  if (exponent.imag() == 0) {
    double const y = exponent.real();
    if (base.imag() == 0) {
      double const x = base.real();
      return x < 0 && hasFraction(y) ? powerOfNegative(-x, y) : Complex(realPower(x, y));
    }
    if (isWhole(y) && std::fabs(y) < 0x1p63) return wholePower(base, y);
  }
  if (base == 0.0 && exponent.real() > 0) return 0;
  return std::pow(base, exponent);
}

txArrayPtr applyPower(Operator op, txArray const& base, txArray const& exponent) {
  Typing const types = typing(op, base, exponent);
  Broadcast const walk(base, exponent, spelling(op));
  if (types.result == txClassInt64) return widePower<std::int64_t>(walk, base, exponent);
  if (types.result == txClassUint64) return widePower<std::uint64_t>(walk, base, exponent);
  bool const integers = isIntegerClass(types.result);
  bool complex = base.isComplex() || exponent.isComplex();
  if (!complex) {
    Operand<double> const a(base);
    Operand<double> const b(exponent);
    txArrayPtr result = makeUninitialized(walk.result(), txClassDouble);
    walk.run(result->dataAs<double>(), a.data(), b.data(), [&](double x, double y) {
      if (integers) refuseFraction(x, y);
      complex = complex || (x < 0 && hasFraction(y));
      return realPower(x, y);
    });
    if (!complex) return convertClass(*result, types.result);
  }
  Operand<Complex> const a(base);
  Operand<Complex> const b(exponent);
  txArrayPtr result = makeUninitialized(walk.result(), txClassDouble, txComplexity::complex);
  walk.run(result->dataAs<Complex>(), a.data(), b.data(), complexPower);
  return dropZeroImaginary(convertClass(*result, types.result));
}

}  // namespace language
