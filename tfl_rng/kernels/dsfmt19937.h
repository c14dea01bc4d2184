#pragma once

// Vector kernels of dSFMT-19937: regeneration and conversion to doubles in one pass.

#include <cstddef>
#include <cstdint>

namespace tfl_rng::dsfmt {

inline constexpr std::size_t kPairs = 191;
inline constexpr std::size_t kWords = 2 * kPairs;
inline constexpr std::size_t kShift = 2 * 117;  // words to the second pair of the recurrence
inline constexpr std::uint64_t kMask[2] = {0x000ffafffffffb3f, 0x000ffdfffc90fffd};
inline constexpr std::uint64_t kMantissa = 0x000fffffffffffff;
inline constexpr std::uint64_t kExponentOfOne = 0x3ff0000000000000;

// A kernel's last vector reaches past the end by one pair.
inline constexpr std::size_t kRoom = 2;
struct Batch {
  alignas(64) std::uint64_t words[kWords + kRoom];
  std::uint64_t lung[2];
};

// Converts the words from words[position] on into open-open doubles.
void fill(Batch const& batch, std::size_t position, double* out, std::size_t n);

// Regenerates the batch and fills out[0, n) from its front.
void regenerateAndFill(Batch& batch, double* out, std::size_t n);

}  // namespace tfl_rng::dsfmt
