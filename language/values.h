#pragma once

// Host values as the language works with them: classes, sizes, conversion of elements.

#include <array>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "embedded_host/array.h"
#include "host/export.h"
#include "host/tx_array.h"

namespace language {

using embedded_host::Dims;
using Shape = std::vector<std::uint64_t>;

// "RandStream", "double", ...
TV_EXPORT std::string classText(txArray const& value);
// "2x3"
TV_EXPORT std::string sizeText(Dims dims);
// "2x3 double"
TV_EXPORT std::string describe(txArray const& value);
std::string elementCountText(std::uint64_t count);  // "1 element", "3 elements"

inline Shape shapeOf(txArray const& value) { return {value.dims().begin(), value.dims().end()}; }
bool sameDims(txArray const& a, txArray const& b);
inline bool isVector(txArray const& value) {
  auto const dims = value.dims();
  return dims.size() == 2 && (dims[0] == 1 || dims[1] == 1);
}
inline bool isMatrix(txArray const& value) { return value.dims().size() == 2; }

// Real or complex numbers, logicals and characters: what arithmetic is defined for.
constexpr bool hasElements(txClassID id) {
  return id == txClassLogical || id == txClassChar || (id >= txClassDouble && id <= txClassUint64);
}
constexpr bool isFloatClass(txClassID id) { return id == txClassDouble || id == txClassSingle; }
constexpr bool isIntegerClass(txClassID id) { return id >= txClassInt8 && id <= txClassUint64; }
constexpr bool is64Bit(txClassID id) { return id == txClassInt64 || id == txClassUint64; }

// Calls visit(T()) with the element type of a class that has elements.
template <class Visit>
decltype(auto) visitElementType(txClassID id, Visit&& visit) {
  switch (id) {
    case txClassLogical:
      return visit(bool());
    case txClassChar:
      return visit(char16_t());
    case txClassSingle:
      return visit(float());
    case txClassInt8:
      return visit(std::int8_t());
    case txClassUint8:
      return visit(std::uint8_t());
    case txClassInt16:
      return visit(std::int16_t());
    case txClassUint16:
      return visit(std::uint16_t());
    case txClassInt32:
      return visit(std::int32_t());
    case txClassUint32:
      return visit(std::uint32_t());
    case txClassInt64:
      return visit(std::int64_t());
    case txClassUint64:
      return visit(std::uint64_t());
    default:
      return visit(double());
  }
}

// Integers never are.
template <class T>
bool isNaN(T value) {
  if constexpr (std::is_floating_point_v<T>) {
    return std::isnan(value);
  } else {
    return false;
  }
}

// One element as another type: integers saturate, fractions are rounded to nearest (halves away
// from 0), NaN becomes 0 there.
template <class To, class From>
To castElement(From value) {
  if constexpr (std::is_same_v<To, bool>) {
    return value != From(0);
  } else if constexpr (std::is_floating_point_v<To>) {
    return static_cast<To>(value);
  } else if constexpr (std::is_floating_point_v<From>) {
    constexpr From kLow = static_cast<From>(std::numeric_limits<To>::min());
    constexpr From kHigh = static_cast<From>(std::numeric_limits<To>::max());
    if (std::isnan(value)) return To(0);
    From const rounded = std::round(value);
    if (rounded <= kLow) return std::numeric_limits<To>::min();
    if (rounded >= kHigh) return std::numeric_limits<To>::max();  // also where kHigh was rounded up
    return static_cast<To>(rounded);
  } else {
    auto const number = +value;  // of a class that integers are compared in
    if (std::cmp_less(number, +std::numeric_limits<To>::min())) {
      return std::numeric_limits<To>::min();
    }
    if (std::cmp_greater(number, +std::numeric_limits<To>::max())) {
      return std::numeric_limits<To>::max();
    }
    return static_cast<To>(value);
  }
}

// The value as a full array of another class with elements; shares the data when nothing changes.
// A complex value stays complex only in a float class; elsewhere it is an error.
TV_EXPORT txArrayPtr convertClass(txArray const& value, txClassID target);
// The same value stored as complex.
txArrayPtr toComplex(txArray const& value);
// The same value stored as real when every imaginary part is 0.
txArrayPtr dropZeroImaginary(txArrayPtr value);

txArrayPtr makeDouble(double value);
TV_EXPORT txArrayPtr emptyDouble();  // 0-by-0
txArrayPtr makeText(std::string_view utf8);

// Arguments of functions; `position` counts from 1 and goes into the error.
TV_EXPORT std::string textArgument(txArray const& value, int position);
TV_EXPORT double numberArgument(txArray const& value, int position);
// A whole number from `lowest` up.
TV_EXPORT std::uint64_t countArgument(txArray const& value, int position, std::uint64_t lowest = 0);
// Raises unless the value is numeric, logical or char; sparse ones come back full.
TV_EXPORT txArrayPtr elementsArgument(txArray const& value, int position);
// The same as numbers: text and logicals become double.
txArrayPtr numbersArgument(txArray const& value, int position);
// The same as double or single.
txArrayPtr floatArgument(txArray const& value, int position);

// The text of a char row or string scalar in UTF-8; empty text for every other value.
TV_EXPORT bool isScalarText(txArray const& value);
TV_EXPORT std::string utf8Of(txArray const& value);

}  // namespace language
