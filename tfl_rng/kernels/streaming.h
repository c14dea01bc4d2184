#pragma once

// Streaming stores write whole cache lines past the caches. That spares reading the lines first,
// about half of the traffic with memory, and is of use only for results that no cache can hold.

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace tfl_rng::streaming {

inline constexpr std::size_t kLine = 64;  // bytes

// How many of out[0, n) lie before the first cache line that begins among them.
inline std::size_t beforeFirstLine(double const* out, std::size_t n) noexcept {
  const std::size_t bytes = -reinterpret_cast<std::uintptr_t>(out) % kLine;
  return bytes % sizeof(double) == 0 ? std::min(n, bytes / sizeof(double)) : n;
}

}  // namespace tfl_rng::streaming
