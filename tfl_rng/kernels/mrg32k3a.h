#pragma once

// Vector kernels of mrg32k3a: each lane makes the steps of its own stretch of the sequence.

#include <array>
#include <cstddef>
#include <cstdint>

#include "tfl_rng/kernels/form.h"

namespace tfl_rng::mrg32k3a_steps {

// The last three terms of both recurrences, as mrg32k3a::Words.
using Words = std::array<std::uint32_t, 6>;

// Fills out[0, n) with the draws after `words`, which move on with them. A draw is one step, or
// two, the second for the bits below the first.
void fill(Form form, Words& words, double* out, std::size_t n);

}  // namespace tfl_rng::mrg32k3a_steps
