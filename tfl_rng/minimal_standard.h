#pragma once

// One step of the minimal standard generator x <- 16807 x mod (2^31 - 1).
// Source: S. K. Park and K. W. Miller, Random number generators: good ones are hard to find,
// Communications of the ACM 31 (1988) 1192-1201. Words run through 1 .. 2^31 - 2, period 2^31 - 2.

#include <cstdint>

#include "tfl_rng/uint128.h"

namespace tfl_rng {

inline constexpr std::uint32_t kMinimalStandardModulus = 0x7fffffff;
// Stands in for a word of 0, which the generator would never leave. The fifth value from 1.
inline constexpr std::uint32_t kMinimalStandardDefault = 1144108930;
// 1 / (2^31 - 1): a word times this is a uniform in (0,1).
inline constexpr double kMinimalStandardScale = 4.656612875245797e-10;

inline constexpr std::uint32_t kMinimalStandardFactor = 16807;

// The word after `word`, or with a power of the factor a later one. Any 32-bit word is legal; those
// from 2^31 - 1 on are no states of the generator and stand for their residue.
inline std::uint32_t minimalStandardStep(std::uint32_t word,
                                         std::uint32_t factor = kMinimalStandardFactor) noexcept {
  // 2^31 is 1 modulo 2^31 - 1: the high and low 31 bits of the product add up to the same residue.
  const std::uint64_t product = std::uint64_t{word} * factor;
  const auto sum =
      static_cast<std::uint32_t>((product & kMinimalStandardModulus) + (product >> 31));
  return sum < kMinimalStandardModulus ? sum : sum - kMinimalStandardModulus;
}

// The word `steps` steps on.
inline std::uint32_t minimalStandardAhead(std::uint32_t word, uint128 steps) noexcept {
  for (std::uint32_t power = kMinimalStandardFactor; steps > 0; steps /= 2) {
    if (steps % 2 != 0) word = minimalStandardStep(word, power);
    power = minimalStandardStep(power, power);
  }
  return word;
}

// The saved form of a word: bits 0 to 14 and 16 to 30 change places. Below 2^31 twice is the word
// again; bit 31 carries into bit 15.
constexpr std::uint32_t exchangeHalves(std::uint32_t word) noexcept {
  return (word >> 16) + (word & 0x8000) + ((word & 0x7fff) << 16);
}

// The uniform of a word.
inline double minimalStandardUniform(std::uint32_t word) noexcept {
  return static_cast<double>(word) * kMinimalStandardScale;
}

}  // namespace tfl_rng
