#include "tfl_rng/philox4x32.h"

#include <algorithm>

#include "tfl_rng/counter_blocks.h"
#include "tfl_rng/kernels/philox4x32.h"
#include "tfl_rng/kernels/philox4x32_reference.h"
#include "tfl_rng/saved_words.h"
#include "tfl_rng/splitmix.h"

namespace tfl_rng {
namespace {

using philox::kDraws;

philox4x32::Key toWords(std::uint64_t key) noexcept {
  return {static_cast<std::uint32_t>(key), static_cast<std::uint32_t>(key >> 32)};
}

std::uint64_t join(std::uint32_t low, std::uint32_t high) noexcept {
  return std::uint64_t{high} << 32 | low;
}

// 1 + (sum mod 2^64 - 1); the sum itself may need 65 bits.
std::uint64_t keyOf(std::uint32_t seed, std::uint64_t streamIndex) noexcept {
  const uint128 sum = uint128{streamIndex} + mix64(seed);
  return 1 + low64(sum % ~std::uint64_t{0});
}

}  // namespace

philox4x32::philox4x32(std::uint32_t seed, std::uint64_t streamIndex, bool fullPrecision)
    : CoreStreamRNG(streamIndex, fullPrecision) {
  reset(seed);
}

philox4x32::Block philox4x32::encrypt(Counter counter, Key key) noexcept {
  return philox::reference::encrypt(counter, key[0], key[1]);
}

void philox4x32::reset(std::uint32_t seed) {
  key_ = keyOf(seed, streamIndex());
  setSubstream(0);
}

void philox4x32::randu(double* out, std::size_t n) {
  if (n <= ahead_.kMostTaken) {
    ahead_.take(position_, out, n, [this](std::size_t count, double* to) {
      philox::fillBlocks(counter_, key_, to, count);
    });
    return move(n);
  }
  drawFromBlocks<kDraws>(position_, out, n,
                         [this](std::size_t first, std::size_t count, double* to) {
                           philox::fillBlocks(counter_ + first, key_, to, count);
                         });
  advance(n);
}

void philox4x32::move(std::uint64_t n) noexcept {
  const uint128 draws = uint128{n} + position_;
  counter_ += draws / kDraws;
  position_ = static_cast<std::uint32_t>(draws % kDraws);
}

errorID philox4x32::advance(std::uint64_t n) {
  move(n);
  ahead_.forget();
  return ok;
}

errorID philox4x32::setSubstream(std::uint64_t index) {
  if (index >= kNumSubstreams) return indexOutOfRange;
  counter_ = (uint128{index} << kLog2SubstreamLen) / kDraws;
  position_ = 0;
  ahead_.forget();
  noteSubstream(index);
  return ok;
}

philox4x32::State philox4x32::state() const noexcept {
  return {philox::reference::split(counter_), toWords(key_), position_};
}

void philox4x32::setState(State const& state) noexcept {
  counter_ = uint128{join(state.counter[2], state.counter[3])} << 64 |
             join(state.counter[0], state.counter[1]);
  key_ = join(state.key[0], state.key[1]);
  position_ = state.position % kDraws;
  ahead_.forget();
}

void philox4x32::save(StateWord* words) const noexcept {
  State const saved = state();
  words = std::ranges::copy(saved.counter, words).out;
  words = std::ranges::copy(saved.key, words).out;
  *words = saved.position;
}

bool philox4x32::load(StateWord const* words) noexcept {
  if (allZero(words, kStateWords)) return false;
  setState({{words[0], words[1], words[2], words[3]}, {words[4], words[5]}, words[6]});
  return true;
}

}  // namespace tfl_rng
