#include "tfl_rng/swb2712.h"

#include <algorithm>

#include "tfl_rng/convert.h"
#include "tfl_rng/shr3cong.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng {
namespace {

constexpr int kUnreadSteps = 32;

// Of the saved state.
constexpr std::size_t kBorrow = swb2712::kLags, kPosition = kBorrow + 1, kCounter = kBorrow + 2;
constexpr double kCounterScale = 0x1p-52;  // keeps a 32-bit counter below 1

}  // namespace

swb2712::swb2712(std::uint32_t seed, bool fullPrecision) : CoreRNG(fullPrecision) {
  swb2712::reset(seed);
}

void swb2712::reset(std::uint32_t seed) {
  std::uint32_t word = seed == 0 ? shr3cong::kShiftRegisterDefault : seed;
  auto next = [&word] { return word = shr3cong_kernel::shiftRegisterStep(word); };
  for (int i = 0; i < kUnreadSteps; ++i) next();
  for (double& lag : state_.lags) {
    const std::uint32_t high = next();
    lag = res53(high, next());
  }
  state_.borrow = false;
  state_.position = 0;
  state_.counter = seed;
}

void swb2712::save(StateWord* words) const noexcept {
  std::ranges::copy(state_.lags, words);
  words[kBorrow] = state_.borrow ? kSmallestUniform : 0;
  words[kPosition] = state_.position * kCounterScale;
  words[kCounter] = state_.counter * kCounterScale;
}

bool swb2712::load(StateWord const* words) noexcept {
  for (std::size_t i = 0; i < kStateWords; ++i) {
    const double least = i < kLags ? kSmallestUniform : 0;
    const bool valid = words[i] >= least && words[i] < 1;
    if (!valid) return false;
  }
  std::copy_n(words, kLags, state_.lags.begin());
  state_.borrow = words[kBorrow] >= kSmallestUniform;
  state_.position = toLow32(words[kPosition] / kCounterScale) % kLags;
  state_.counter = toLow32(words[kCounter] / kCounterScale);
  return true;
}

void swb2712::randu(double* out, std::size_t n) { swb2712_kernel::fill(state_, out, n); }

}  // namespace tfl_rng
