#pragma once

// The saved forms of the cores that several plug-ins hold. Loading checks the whole state first
// and raises the generator's InvalidState, the core unchanged.

#include "tfl_rng/mt19937ar.h"
#include "tfl_rng/shr3cong.h"
#include "tfl_rng/swb2712.h"

namespace plugin_rng {

// The 624 words of the vector, then the position. A position beyond 624 and words that are all 0
// are refused.
void saveState(tfl_rng::mt19937ar const& core, std::uint32_t* state);
void loadState(tfl_rng::mt19937ar& core, std::uint32_t const* state);

// The congruential word, then the shift-register word. (Loading differs from plug-in to plug-in.)
void saveState(tfl_rng::shr3cong const& core, double* state);

// Values 0 to 31 the lag values, 32 the borrow (0 or 2^-53), 33 the ring position and 34 the Weyl
// counter, both times 2^-52.
void saveState(tfl_rng::swb2712 const& core, double* state);
// Accepts values in [0, 1), the lag values from 2^-53 on. A borrow below 2^-53 is none; of the
// position the low 5 bits count.
void loadState(tfl_rng::swb2712& core, double const* state);

}  // namespace plugin_rng
