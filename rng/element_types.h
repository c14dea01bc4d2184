#pragma once

// The nine element types of random integers, and the one conversion into them.

#include <cstdint>
#include <limits>
#include <type_traits>

#include "host/tx_array.h"

// RNG_ELEMENT(type, class): a C++ element type and its host class.
#define RNG_INTEGER_ELEMENTS(RNG_ELEMENT)    \
  RNG_ELEMENT(double, txClassDouble)         \
  RNG_ELEMENT(float, txClassSingle)          \
  RNG_ELEMENT(bool, txClassLogical)          \
  RNG_ELEMENT(signed char, txClassInt8)      \
  RNG_ELEMENT(unsigned char, txClassUint8)   \
  RNG_ELEMENT(short, txClassInt16)           \
  RNG_ELEMENT(unsigned short, txClassUint16) \
  RNG_ELEMENT(int, txClassInt32)             \
  RNG_ELEMENT(unsigned int, txClassUint32)

// The value as a T: floating types round to nearest; integer types saturate at their bounds and
// round halves away from zero in between; bool is false up to 0, true from 1/2 on.
template <class T>
T storeAs(double value) noexcept {
  if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(value);
  } else if constexpr (std::is_same_v<T, bool>) {
    return value >= 0.5;
  } else {
    constexpr double kLow = std::numeric_limits<T>::min();
    constexpr double kHigh = std::numeric_limits<T>::max();
    if (!(value > kLow)) return std::numeric_limits<T>::min();
    if (value >= kHigh) return std::numeric_limits<T>::max();
    const auto whole = static_cast<std::int64_t>(value);
    const double fraction = value - static_cast<double>(whole);
    return static_cast<T>(whole + (fraction >= 0.5) - (fraction <= -0.5));
  }
}
