#pragma once

// Raw words to uniform doubles in the open interval (0,1).

#include <algorithm>
#include <cstdint>

namespace tfl_rng {

inline constexpr double kSmallestUniform = 0x1p-53;

// 53 bits from two 32-bit words, as published with MT19937 (genrand_res53): k * 2^-53 from the high
// 27 bits of `high` and the high 26 bits of `low`; k = 0 is delivered as 2^-53.
inline double res53(std::uint32_t high, std::uint32_t low) noexcept {
  const std::uint64_t k = (std::uint64_t{high >> 5} << 26) | (low >> 6);
  // By way of signed numbers, which every machine converts in one instruction.
  return std::max(static_cast<double>(static_cast<std::int64_t>(k)) * 0x1p-53, kSmallestUniform);
}

// The top 52 bits b of a 64-bit word: (b + 0.5) * 2^-52.
inline double open52(std::uint64_t word) noexcept {
  return (static_cast<double>(static_cast<std::int64_t>(word >> 12)) + 0.5) * 0x1p-52;
}

// A 32-bit word w: (w + 0.5) * 2^-32.
inline double open32(std::uint32_t word) noexcept {
  return (static_cast<double>(std::int64_t{word}) + 0.5) * 0x1p-32;
}

}  // namespace tfl_rng
