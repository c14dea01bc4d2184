#pragma once

// Arithmetic of 64-bit integers with each other and with doubles, rounded once. Numbers are whole
// multiples of powers of two, which every 64-bit integer and every double is.

#include <compare>
#include <concepts>
#include <cstdint>
#include <limits>

namespace language {

struct Exact {
  enum class Kind : std::uint8_t { finite, infinite, notANumber };

  std::uint64_t magnitude = 0;  // finite: the number is +-magnitude * 2^exponent
  int exponent = 0;             // negative only for numbers with a fraction
  bool negative = false;
  Kind kind = Kind::finite;

  bool isWhole() const { return kind == Kind::finite && exponent >= 0; }
};

Exact exactOf(double value);
template <std::integral T>
Exact exactOf(T value) {
  bool const negative = value < T(0);
  auto const bits = static_cast<std::uint64_t>(value);
  return {negative ? 0 - bits : bits, 0, negative};
}

// The nearest double.
double nearestDouble(Exact const& value);

std::partial_ordering compare(Exact const& left, Exact const& right);

// A whole number, its magnitude at most 2^64-1: larger ones are kept there.
struct Whole {
  std::uint64_t magnitude;
  bool negative;

  // The nearest value of an integer class.
  template <class T>
  T as() const {
    constexpr auto kHighest = static_cast<std::uint64_t>(std::numeric_limits<T>::max());
    constexpr std::uint64_t kLowest = std::numeric_limits<T>::min() == 0 ? 0 : kHighest + 1;
    std::uint64_t const limit = negative ? kLowest : kHighest;
    std::uint64_t const kept = magnitude < limit ? magnitude : limit;
    return static_cast<T>(negative ? 0 - kept : kept);
  }
};
template <std::integral T>
Whole wholeOf(T value) {
  Exact const exact = exactOf(value);
  return {exact.magnitude, exact.negative};
}
Whole operator*(Whole left, Whole right);

// The exact results rounded to whole numbers, halves away from 0; infinite ones are as large as a
// Whole can be, NaN is 0.
Whole product(Exact const& left, Exact const& right);
Whole quotient(Exact const& left, Exact const& right);
// One operand of a sum is whole.
Whole sum(Exact const& left, Exact const& right);
// Of whole numbers; wholePower(0, -1) is infinite.
Whole wholePower(Exact const& base, Exact const& exponent);
// With the sign of the dividend, and with that of the divisor; of a divisor 0 the dividend.
Whole remainder(Exact const& dividend, Exact const& divisor);
Whole modulus(Exact const& dividend, Exact const& divisor);

}  // namespace language
