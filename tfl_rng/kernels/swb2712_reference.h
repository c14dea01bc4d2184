#pragma once

// The scalar form of the swb2712 kernel: what it must equal.

#include <cstddef>
#include <cstdint>

#include "tfl_rng/kernels/swb2712.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng::swb2712_kernel {

// Fractions are counted in units of 2^-53.
inline constexpr std::uint64_t kUnits = std::uint64_t{1} << 53;
// The ring holds the last 32 values: 12 back is 20 on, 27 back is 5 on.
inline constexpr std::size_t kNear = 12;
inline constexpr std::size_t kFar = 27;
inline constexpr std::uint32_t kWeylStep = 0x9e3779b9;  // 2^32 over the golden ratio, odd
// The finaliser of MurmurHash3 (A. Appleby, 2011), a bijection of 32-bit words.
inline constexpr std::uint32_t kMix1 = 0x85ebca6b;
inline constexpr std::uint32_t kMix2 = 0xc2b2ae35;

namespace reference {

inline std::uint32_t mix32(std::uint32_t h) noexcept {
  h ^= h >> 16;
  h *= kMix1;
  h ^= h >> 13;
  h *= kMix2;
  return h ^ (h >> 16);
}

inline std::int64_t toUnits(double fraction) noexcept {
  return static_cast<std::int64_t>(fraction * 0x1p53);
}

inline double toFraction(std::uint64_t units) noexcept {
  return units == 0 ? kSmallestUniform : static_cast<double>(units) * 0x1p-53;
}

inline double draw(State& state) noexcept {
  auto& [lags, borrow, position, counter] = state;
  const std::int64_t difference = toUnits(lags[(position + kLags - kNear) % kLags]) -
                                  toUnits(lags[(position + kLags - kFar) % kLags]) - borrow;
  borrow = difference < 0;
  const std::uint64_t z = static_cast<std::uint64_t>(difference) % kUnits;
  lags[position] = toFraction(z);
  position = (position + 1) % kLags;

  counter += kWeylStep;
  const std::uint64_t mask = mix32(counter) | std::uint64_t{mix32(~counter) >> 11} << 32;
  return toFraction(z ^ mask);
}

inline void fill(State& state, double* out, std::size_t n) noexcept {
  for (std::size_t i = 0; i < n; ++i) out[i] = draw(state);
}

}  // namespace reference
}  // namespace tfl_rng::swb2712_kernel
