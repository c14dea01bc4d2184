#pragma once

// The scalar form of the dSFMT-19937 kernels: what they must equal, and what the baseline runs.

#include <bit>
#include <cstddef>
#include <cstdint>

#include "tfl_rng/kernels/dsfmt19937.h"

namespace tfl_rng::dsfmt::reference {

// One step of the recurrence: the pair at `a` and the one at `b` turn the lung, and the lung turns
// the pair at `a` into the next two outputs.
inline void step(std::uint64_t* a, std::uint64_t const* b, std::uint64_t* lung) {
  const std::uint64_t old0 = lung[0];
  const std::uint64_t old1 = lung[1];
  lung[0] = (a[0] << 19) ^ std::rotl(old1, 32) ^ b[0];
  lung[1] = (a[1] << 19) ^ std::rotl(old0, 32) ^ b[1];
  a[0] ^= (lung[0] >> 12) ^ (lung[0] & kMask[0]);
  a[1] ^= (lung[1] >> 12) ^ (lung[1] & kMask[1]);
}

inline void regenerate(Batch& batch) {
  std::uint64_t* w = batch.words;
  std::uint64_t lung[2] = {batch.lung[0], batch.lung[1]};
  std::size_t i = 0;
  for (; i < kWords - kShift; i += 2) step(w + i, w + i + kShift, lung);
  for (; i < kWords; i += 2) step(w + i, w + i + kShift - kWords, lung);
  batch.lung[0] = lung[0];
  batch.lung[1] = lung[1];
}

inline double openOpen(std::uint64_t word) {
  return std::bit_cast<double>((word & kMantissa) | kExponentOfOne | 1) - 1;
}

inline void fill(std::uint64_t const* words, double* out, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) out[i] = openOpen(words[i]);
}

}  // namespace tfl_rng::dsfmt::reference
