#include "tfl_rng/swb2712.h"

#include "tfl_rng/shr3cong.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng {
namespace {

constexpr std::uint64_t kUnits = std::uint64_t{1} << 53;  // units of 2^-53 in 1
constexpr std::uint32_t kWeylStep = 0x9e3779b9;           // 2^32 over the golden ratio, odd
constexpr int kUnreadSteps = 32;

// A bijection of 32-bit words: the finaliser of MurmurHash3 (A. Appleby, 2011).
std::uint32_t mix32(std::uint32_t h) noexcept {
  h ^= h >> 16;
  h *= 0x85ebca6b;
  h ^= h >> 13;
  h *= 0xc2b2ae35;
  h ^= h >> 16;
  return h;
}

std::int64_t toUnits(double fraction) noexcept {
  return static_cast<std::int64_t>(fraction * 0x1p53);
}

double toFraction(std::uint64_t units) noexcept {
  return units == 0 ? kSmallestUniform : static_cast<double>(units) * 0x1p-53;
}

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

void swb2712::randu(double* out, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) out[i] = draw();
}

double swb2712::draw() noexcept {
  auto& [lags, borrow, position, counter] = state_;
  // The ring holds the last 32 values: 12 back is 20 on, 27 back is 5 on.
  const std::int64_t difference =
      toUnits(lags[(position + 20) % kLags]) - toUnits(lags[(position + 5) % kLags]) - borrow;
  borrow = difference < 0;
  const std::uint64_t z = static_cast<std::uint64_t>(difference) % kUnits;
  lags[position] = toFraction(z);
  position = (position + 1) % kLags;

  counter += kWeylStep;
  const std::uint64_t mask = mix32(counter) | std::uint64_t{mix32(~counter) >> 11} << 32;
  return toFraction(z ^ mask);
}

}  // namespace tfl_rng
