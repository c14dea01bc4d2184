#pragma once

// Whether a fill can have the threads it would use. The task library starts its own one by one as
// work comes in, each of them the next, and one that finds itself at the limit of the user or the
// container ends the program.

#include <cstddef>

namespace plugin_rng {

// True when `count` threads more could be started for the task library. Tried once, with as many
// again, as those of the trial may still be counted when the library starts its own; what came of
// it holds from then on.
bool canHaveThreads(std::size_t count);

}  // namespace plugin_rng
