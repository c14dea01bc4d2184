#include "tfl_rng/swb2712.h"

#include "tfl_rng/kernels/swb2712.h"
#include "tfl_rng/shr3cong.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng {
namespace {

constexpr int kUnreadSteps = 32;

}  // namespace

swb2712::swb2712(std::uint32_t seed, bool fullPrecision) : CoreRNG(fullPrecision) {
  swb2712::reset(seed);
}

void swb2712::reset(std::uint32_t seed) {
  std::uint32_t word = seed == 0 ? shr3cong::kShiftRegisterDefault : seed;
  auto next = [&word] { return word = shr3cong::shiftRegisterStep(word); };
  for (int i = 0; i < kUnreadSteps; ++i) next();
  for (double& lag : state_.lags) {
    const std::uint32_t high = next();
    lag = res53(high, next());
  }
  state_.borrow = false;
  state_.position = 0;
  state_.counter = seed;
}

void swb2712::randu(double* out, std::size_t n) { swb2712_kernel::fill(state_, out, n); }

}  // namespace tfl_rng
