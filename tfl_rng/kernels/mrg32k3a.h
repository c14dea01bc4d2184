#pragma once

// Vector kernels of mrg32k3a: each lane makes the steps of its own stretch of the sequence.

#include <array>
#include <cstddef>
#include <cstdint>

namespace tfl_rng::mrg32k3a_steps {

// The last three terms of both recurrences, as mrg32k3a::Words.
using Words = std::array<std::uint32_t, 6>;

// How steps become a double: one each; or two, the second for the bits below the first.
struct Reduced {
  static constexpr std::size_t kStepsEach = 1;
};
struct Full {
  static constexpr std::size_t kStepsEach = 2;
};

// Fills out[0, n) with the draws after `words`, which move on with them.
void fill(Reduced, Words& words, double* out, std::size_t n);
void fill(Full, Words& words, double* out, std::size_t n);

}  // namespace tfl_rng::mrg32k3a_steps
