#pragma once

// Vector kernel of Threefry4x64-20: counters to doubles, one block a lane.

#include <array>
#include <cstddef>
#include <cstdint>

namespace tfl_rng::threefry {

using Block = std::array<std::uint64_t, 4>;  // low word first

inline constexpr std::size_t kDraws = 4;  // of a block
inline constexpr std::uint64_t kParity = 0x1BD11BDAA9FC1A22;
inline constexpr std::size_t kInjections = 6;

// What is added to the words before the first of twenty rounds and after each fourth.
using Injections = std::array<Block, kInjections>;

constexpr Injections injections(Block const& key) noexcept {
  const std::uint64_t last = kParity ^ key[0] ^ key[1] ^ key[2] ^ key[3];
  return {{{key[0], key[1], key[2], key[3]},
           {key[1], key[2], key[3], last + 1},
           {key[2], key[3], last, key[0] + 2},
           {key[3], last, key[0], key[1] + 3},
           {last, key[0], key[1], key[2] + 4},
           {key[0], key[1], key[2], key[3] + 5}}};
}

// Of both halves of a block, for each of eight rounds.
inline constexpr int kRotations[8][2] = {{14, 16}, {52, 57}, {23, 40}, {5, 37},
                                         {25, 33}, {46, 12}, {58, 22}, {32, 32}};

// The counter `blocks` after `counter`.
constexpr Block plus(Block counter, std::uint64_t blocks) noexcept {
  counter[0] += blocks;
  if (counter[0] < blocks && ++counter[1] == 0 && ++counter[2] == 0) ++counter[3];
  return counter;
}

// Fills out[0, 4 * count) with the draws of the blocks of `counter` and the count - 1 after it.
void fillBlocks(Block const& counter, Block const& key, double* out, std::size_t count);

}  // namespace tfl_rng::threefry
