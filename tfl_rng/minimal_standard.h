#pragma once

// One step of the minimal standard generator x <- 16807 x mod (2^31 - 1).
// Source: S. K. Park and K. W. Miller, Random number generators: good ones are hard to find,
// Communications of the ACM 31 (1988) 1192-1201. Words run through 1 .. 2^31 - 2, period 2^31 - 2.

#include <cstdint>

namespace tfl_rng {

inline constexpr std::uint32_t kMinimalStandardModulus = 0x7fffffff;
// Stands in for a word of 0, which the generator would never leave. The fifth value from 1.
inline constexpr std::uint32_t kMinimalStandardDefault = 1144108930;
// 1 / (2^31 - 1): a word times this is a uniform in (0,1).
inline constexpr double kMinimalStandardScale = 4.656612875245797e-10;

// The word after `word`, by Schrage's method. Any 32-bit word is legal; words from 2^31 - 1 on are
// no states of the generator, and their successor is that of the published 32-bit arithmetic.
inline std::uint32_t minimalStandardStep(std::uint32_t word) noexcept {
  constexpr std::uint32_t multiplier = 16807;
  constexpr std::uint32_t quotient = kMinimalStandardModulus / multiplier;   // 127773
  constexpr std::uint32_t remainder = kMinimalStandardModulus % multiplier;  // 2836
  const std::uint32_t high = word / quotient;
  const std::uint32_t next = multiplier * (word - high * quotient) - remainder * high;
  return next >> 31 ? next + kMinimalStandardModulus : next;
}

// The uniform of a word.
inline double minimalStandardUniform(std::uint32_t word) noexcept {
  return static_cast<double>(word) * kMinimalStandardScale;
}

}  // namespace tfl_rng
