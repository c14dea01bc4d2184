#pragma once

#include <array>
#include <cstdint>

namespace tfl_rng::kernels {

// The numbers of the bits set in a byte, ascending, one in each byte of a word, the lowest first.
inline constexpr auto kLanesOf = [] {
  std::array<std::uint64_t, 256> result{};
  for (unsigned bits = 0; bits < 256; ++bits) {
    int count = 0;
    for (std::uint64_t lane = 0; lane < 8; ++lane)
      if (bits >> lane & 1) result[bits] |= lane << (8 * count++);
  }
  return result;
}();

}  // namespace tfl_rng::kernels
