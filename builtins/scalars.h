#pragma once

// Single values as arguments and results of the stream object's methods.

#include <array>
#include <cstdint>
#include <optional>

#include "host/tx_array.h"

namespace builtins {

// Numeric, real, one element.
bool isRealScalar(txArray const& array) noexcept;

// A real scalar that is a whole number >= 0, exact for the 64-bit classes; doubles of 2^64 and more
// count as 2^64 - 1. Nothing for every other value.
std::optional<std::uint64_t> toCount(txArray const& array);

template <class T>
txArrayPtr makeScalar(txClassID classID, T value) {
  txArrayPtr result = txCreateUninitialized(std::array<std::uint64_t, 2>{1, 1}, classID);
  *result->dataAs<T>() = value;
  return result;
}

}  // namespace builtins
