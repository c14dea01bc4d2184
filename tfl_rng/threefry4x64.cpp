#include "tfl_rng/threefry4x64.h"

#include "tfl_rng/counter_blocks.h"
#include "tfl_rng/kernels/threefry4x64.h"
#include "tfl_rng/kernels/threefry4x64_reference.h"
#include "tfl_rng/saved_words.h"
#include "tfl_rng/uint128.h"

namespace tfl_rng {
namespace {

using Block = threefry4x64::Block;

using threefry::kDraws;
using threefry::plus;

}  // namespace

threefry4x64::threefry4x64(std::uint32_t seed, std::uint64_t streamIndex, bool fullPrecision)
    : CoreStreamRNG(streamIndex, fullPrecision) {
  reset(seed);
}

Block threefry4x64::encrypt(Block counter, Block const& key) noexcept {
  return threefry::reference::encrypt(counter, threefry::injections(key));
}

void threefry4x64::reset(std::uint32_t seed) {
  state_.key = {seed, streamIndex(), 1, 0};
  setSubstream(0);
}

void threefry4x64::randu(double* out, std::size_t n) {
  if (n <= ahead_.kMostTaken) {
    ahead_.take(state_.position, out, n, [this](std::size_t count, double* to) {
      threefry::fillBlocks(state_.counter, state_.key, to, count);
    });
    return move(n);
  }
  drawFromBlocks<kDraws>(state_.position, out, n,
                         [this](std::size_t first, std::size_t count, double* to) {
                           threefry::fillBlocks(plus(state_.counter, first), state_.key, to, count);
                         });
  advance(n);
}

void threefry4x64::move(std::uint64_t n) noexcept {
  const uint128 draws = uint128{n} + state_.position;
  state_.counter = plus(state_.counter, low64(draws / kDraws));
  state_.position = static_cast<std::uint32_t>(draws % kDraws);
}

errorID threefry4x64::advance(std::uint64_t n) {
  move(n);
  ahead_.forget();
  return ok;
}

errorID threefry4x64::setSubstream(std::uint64_t index) {
  if (index >= kNumSubstreams) return indexOutOfRange;
  const uint128 first = (uint128{index} << kLog2SubstreamLen) / kDraws;
  state_.counter = {low64(first), high64(first), 0, 0};
  state_.position = 0;
  ahead_.forget();
  noteSubstream(index);
  return ok;
}

void threefry4x64::setState(State const& state) noexcept {
  state_ = state;
  state_.position %= kDraws;
  ahead_.forget();
}

void threefry4x64::save(StateWord* words) const noexcept {
  for (Block const& block : {state_.counter, state_.key}) {
    for (std::uint64_t word : block) {
      *words++ = static_cast<StateWord>(word >> 32);
      *words++ = static_cast<StateWord>(word);
    }
  }
  *words = state_.position;
}

bool threefry4x64::load(StateWord const* words) noexcept {
  if (allZero(words, kStateWords)) return false;
  const auto next = [&words] {
    words += 2;
    return std::uint64_t{words[-2]} << 32 | words[-1];
  };
  State loaded;
  for (std::uint64_t& word : loaded.counter) word = next();
  for (std::uint64_t& word : loaded.key) word = next();
  loaded.position = *words;
  setState(loaded);
  return true;
}

}  // namespace tfl_rng
