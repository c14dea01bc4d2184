#pragma once

// Vector kernel of swb2712: a vector of draws at a time, up to eight, while the nearer lag is
// twelve.

#include <cstddef>

#include "tfl_rng/swb2712.h"

namespace tfl_rng::swb2712_kernel {

// Fills out[0, n) with the draws after `state` and moves it on.
void fill(swb2712::State& state, double* out, std::size_t n);

}  // namespace tfl_rng::swb2712_kernel
