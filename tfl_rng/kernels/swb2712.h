#pragma once

// Vector kernel of swb2712: twelve draws at a time, as the nearer lag allows, in registers. A
// borrow is the sign of the difference before; only where that is 0 or 1 does it matter what came
// before.

#include <cstddef>

#include "tfl_rng/swb2712.h"

namespace tfl_rng::swb2712_kernel {

// Fills out[0, n) with the draws after `state` and moves it on.
void fill(swb2712::State& state, double* out, std::size_t n);

}  // namespace tfl_rng::swb2712_kernel
