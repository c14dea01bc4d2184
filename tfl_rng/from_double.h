#pragma once

// Doubles to unsigned integers, with the same result for every value on every machine. (What the
// language leaves open, and processors answer differently: values out of range and NaN.)

#include <cstdint>
#include <limits>

namespace tfl_rng {

// Truncated to a signed 64-bit integer, of which the low 32 bits; 0 for NaN and beyond that range.
constexpr std::uint32_t toLow32(double value) noexcept {
  if (!(value >= -0x1p63 && value < 0x1p63)) return 0;
  return static_cast<std::uint32_t>(static_cast<std::int64_t>(value));
}

// Truncated to an unsigned 64-bit integer; 0 for NaN and below 1, 2^64 - 1 from 2^64 on.
constexpr std::uint64_t toUint64(double value) noexcept {
  if (!(value >= 1)) return 0;
  if (value >= 0x1p64) return std::numeric_limits<std::uint64_t>::max();
  return static_cast<std::uint64_t>(value);
}

}  // namespace tfl_rng
