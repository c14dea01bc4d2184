#pragma once

// The saved forms of the cores that several plug-ins hold. Loading checks the whole state first
// and raises the generator's InvalidState, the core unchanged.

#include "tfl_rng/swb2712.h"

namespace plugin_rng {

inline constexpr std::size_t kSwb2712StateLen = 35;

// Values 0 to 31 the lag values, 32 the borrow (0 or 2^-53), 33 the ring position and 34 the Weyl
// counter, both times 2^-52.
void saveState(tfl_rng::swb2712 const& core, double* state);
// Accepts values in [0, 1), the lag values from 2^-53 on. A borrow below 2^-53 is none; of the
// position the low 5 bits count.
void loadState(tfl_rng::swb2712& core, double const* state);

}  // namespace plugin_rng
