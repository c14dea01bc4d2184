#pragma once

// How the draws of a request are written: past the caches where the whole result does not fit them.

#include <cstddef>

#include "plugin_rng/interruption.h"

namespace plugin_rng {

// Doubles of a result that is written past the caches: 32 MiB, what a core has of the last-level
// cache on most machines, and more than is left of it for results.
inline constexpr std::size_t kLeastStreamed = std::size_t{1} << 22;

// Draws out[0, n), a part of a result of `total` doubles. Cores that are quicker than the memory
// behind the caches have a way past these.
template <class Core>
void drawPart(Core& core, double* out, std::size_t n, std::size_t total) {
  if (total <= kUninterrupted) [[likely]]
    return core.randu(out, n);
  inInterruptibleParts(n, [&](std::size_t at, std::size_t length) {
    if constexpr (requires { core.randuStreaming(out, length); }) {
      if (total >= kLeastStreamed) return core.randuStreaming(out + at, length);
    }
    core.randu(out + at, length);
  });
}

}  // namespace plugin_rng
