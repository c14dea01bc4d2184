#pragma once

// The scalar form of the mcg16807 kernels: what they must equal.

#include <cstddef>
#include <cstdint>

#include "tfl_rng/kernels/mcg16807.h"
#include "tfl_rng/minimal_standard.h"

namespace tfl_rng::minimal_standard::reference {

inline double draw(Reduced, std::uint32_t& word) noexcept {
  word = minimalStandardStep(word);
  return minimalStandardUniform(word);
}

inline double draw(Full, std::uint32_t& word) noexcept {
  // Both steps from the same word, so that neither waits for the other.
  constexpr std::uint32_t kTwoSteps = kMinimalStandardFactor * kMinimalStandardFactor;
  const std::uint32_t first = minimalStandardStep(word);
  word = minimalStandardStep(word, kTwoSteps);
  const std::uint64_t bits = (std::uint64_t{(first - 1) >> 5} << 26) | ((word - 1) >> 5);
  return (static_cast<double>(static_cast<std::int64_t>(bits)) + 0.5) * 0x1p-52;
}

template <class Precision>
std::uint32_t fill(Precision precision, std::uint32_t word, double* out, std::size_t n) noexcept {
  for (std::size_t i = 0; i < n; ++i) out[i] = draw(precision, word);
  return word;
}

}  // namespace tfl_rng::minimal_standard::reference
