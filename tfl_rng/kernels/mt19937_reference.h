#pragma once

// The scalar form of the MT19937 kernels: what they must equal, and what the baseline runs.

#include <cstddef>
#include <cstdint>

#include "tfl_rng/kernels/mt19937.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng::mt19937::reference {

// The top bit of u joined to the low 31 bits of v, times the matrix A.
inline std::uint32_t twist(std::uint32_t u, std::uint32_t v) {
  const std::uint32_t joined = (u & kUpperMask) | (v & ~kUpperMask);
  return (joined >> 1) ^ ((0u - (v & 1u)) & kMatrix);
}

inline std::uint32_t temper(std::uint32_t y) {
  y ^= y >> 11;
  y ^= (y << 7) & kTemperB;
  y ^= (y << 15) & kTemperC;
  return y ^ (y >> 18);
}

inline void regenerate(std::uint32_t* w) {
  std::size_t i = 0;
  for (; i < kWords - kShift; ++i) w[i] = w[i + kShift] ^ twist(w[i], w[i + 1]);
  for (; i < kWords - 1; ++i) w[i] = w[i + kShift - kWords] ^ twist(w[i], w[i + 1]);
  w[i] = w[kShift - 1] ^ twist(w[i], w[0]);
}

inline double convert(Full, std::uint32_t const* words) {
  return res53(temper(words[0]), temper(words[1]));
}
inline double convert(Reduced, std::uint32_t const* words) { return open32(temper(words[0])); }

template <class Precision>
void fill(Precision precision, std::uint32_t const* words, double* out, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i)
    out[i] = convert(precision, words + i * Precision::kStepsEach);
}

inline void temper(std::uint32_t const* words, std::uint64_t* values, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i)
    values[i] = (std::uint64_t{temper(words[2 * i + 1])} << 32) | temper(words[2 * i]);
}

}  // namespace tfl_rng::mt19937::reference
