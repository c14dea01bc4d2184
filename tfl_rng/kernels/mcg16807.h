#pragma once

// Vector kernels of mcg16807: each lane multiplies by its own power of 16807, so that a vector
// holds consecutive words.

#include <cstddef>
#include <cstdint>

namespace tfl_rng::minimal_standard {

// How words become a double: one word each, scaled; or two, of 26 bits each.
struct Reduced {
  static constexpr std::size_t kWordsEach = 1;
};
struct Full {
  static constexpr std::size_t kWordsEach = 2;
};

// Fills out[0, n) with the doubles of the words after `word`, which must be a state of the
// generator, and returns the last word used.
std::uint32_t fill(Reduced, std::uint32_t word, double* out, std::size_t n);
std::uint32_t fill(Full, std::uint32_t word, double* out, std::size_t n);

// The same, written past the caches.
std::uint32_t fillStreaming(Reduced, std::uint32_t word, double* out, std::size_t n);
std::uint32_t fillStreaming(Full, std::uint32_t word, double* out, std::size_t n);

}  // namespace tfl_rng::minimal_standard
