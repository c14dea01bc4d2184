#pragma once

// Vector kernel of Philox4x32-10: counters to doubles, one block a 64-bit lane.

#include <cstddef>
#include <cstdint>

#include "tfl_rng/uint128.h"

namespace tfl_rng::philox {

inline constexpr std::size_t kDraws = 2;  // of a block
inline constexpr int kRounds = 10;
inline constexpr std::uint32_t kMultiplier0 = 0xD2511F53;
inline constexpr std::uint32_t kMultiplier1 = 0xCD9E8D57;
inline constexpr std::uint32_t kWeyl0 = 0x9E3779B9;
inline constexpr std::uint32_t kWeyl1 = 0xBB67AE85;

// Fills out[0, 2 * count) with the draws of the blocks of `counter` and the count - 1 after it.
void fillBlocks(uint128 counter, std::uint64_t key, double* out, std::size_t count);

}  // namespace tfl_rng::philox
