#pragma once

// Vector kernels of mcg16807: each lane multiplies by its own power of 16807, so that a vector
// holds consecutive words.

#include <cstddef>
#include <cstdint>

#include "tfl_rng/kernels/form.h"

namespace tfl_rng::minimal_standard {

// Fills out[0, n) with the doubles of the words after `word`, which must be a state of the
// generator, and returns the last word used. A double is one word, scaled, or 26 bits of each of
// two.
std::uint32_t fill(Form form, Stores stores, std::uint32_t word, double* out, std::size_t n);

}  // namespace tfl_rng::minimal_standard
