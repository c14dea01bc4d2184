#include "tfl_rng/threefry4x64.h"

#include <bit>

#include "tfl_rng/counter_blocks.h"
#include "tfl_rng/to_double.h"
#include "tfl_rng/uint128.h"

namespace tfl_rng {
namespace {

using Block = threefry4x64::Block;

constexpr std::size_t kDraws = 4;  // of a block
constexpr int kRounds = 20;
constexpr std::uint64_t kParity = 0x1BD11BDAA9FC1A22;
// Of both halves of a block, for each of eight rounds.
constexpr int kRotations[8][2] = {{14, 16}, {52, 57}, {23, 40}, {5, 37},
                                  {25, 33}, {46, 12}, {58, 22}, {32, 32}};

Block plus(Block counter, std::uint64_t blocks) noexcept {
  counter[0] += blocks;
  if (counter[0] < blocks && ++counter[1] == 0 && ++counter[2] == 0) ++counter[3];
  return counter;
}

void fillBlocks(Block counter, Block const& key, double* out, std::size_t count) {
  for (; count > 0; --count, counter = plus(counter, 1), out += kDraws) {
    const Block block = threefry4x64::encrypt(counter, key);
    for (std::size_t i = 0; i < kDraws; ++i) out[i] = open52(block[i]);
  }
}

}  // namespace

threefry4x64::threefry4x64(std::uint32_t seed, std::size_t streamIndex, bool fullPrecision)
    : CoreStreamRNG(streamIndex, fullPrecision) {
  reset(seed);
}

Block threefry4x64::encrypt(Block x, Block const& key) noexcept {
  const std::uint64_t k[5] = {key[0], key[1], key[2], key[3],
                              kParity ^ key[0] ^ key[1] ^ key[2] ^ key[3]};
  for (std::size_t i = 0; i < 4; ++i) x[i] += k[i];
  for (std::size_t round = 0; round < kRounds; ++round) {
    // The second words trade places between the halves from round to round.
    const std::size_t a = round % 2 == 0 ? 1 : 3;
    const std::size_t b = round % 2 == 0 ? 3 : 1;
    x[0] += x[a];
    x[a] = std::rotl(x[a], kRotations[round % 8][0]) ^ x[0];
    x[2] += x[b];
    x[b] = std::rotl(x[b], kRotations[round % 8][1]) ^ x[2];
    if (round % 4 != 3) continue;
    const std::size_t injection = round / 4 + 1;
    for (std::size_t i = 0; i < 4; ++i) x[i] += k[(injection + i) % 5];
    x[3] += injection;
  }
  return x;
}

void threefry4x64::reset(std::uint32_t seed) {
  state_.key = {seed, streamIndex(), 1, 0};
  setSubstream(0);
}

void threefry4x64::randu(double* out, std::size_t n) {
  drawFromBlocks<kDraws>(state_.position, out, n,
                         [this](std::size_t first, std::size_t count, double* to) {
                           fillBlocks(plus(state_.counter, first), state_.key, to, count);
                         });
  advance(n);
}

errorID threefry4x64::advance(std::size_t n) {
  const uint128 draws = uint128{n} + state_.position;
  state_.counter = plus(state_.counter, low64(draws / kDraws));
  state_.position = static_cast<std::uint32_t>(draws % kDraws);
  return ok;
}

errorID threefry4x64::setSubstream(std::size_t index) {
  if (index >= kNumSubstreams) return indexOutOfRange;
  const uint128 first = (uint128{index} << kLog2SubstreamLen) / kDraws;
  state_.counter = {low64(first), high64(first), 0, 0};
  state_.position = 0;
  noteSubstream(index);
  return ok;
}

void threefry4x64::setState(State const& state) noexcept {
  state_ = state;
  state_.position %= kDraws;
}

}  // namespace tfl_rng
