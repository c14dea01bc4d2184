#include "tfl_rng/shr3cong.h"

#include <array>

#include "tfl_rng/convert.h"
#include "tfl_rng/elementary.h"
#include "tfl_rng/to_double.h"
#include "tfl_rng/uint128.h"
#include "tfl_rng/ziggurat128.h"

namespace tfl_rng {
namespace {

// Linear maps of the shift register: the images of its 32 bits.
using Matrix = std::array<std::uint32_t, 32>;

constexpr std::uint32_t imageOf(Matrix const& map, std::uint32_t word) noexcept {
  std::uint32_t image = 0;
  for (std::size_t i = 0; i < map.size(); ++i) image ^= (word >> i & 1) * map[i];
  return image;
}

// 2^0, 2^1, ... 2^31 steps. The period is 2^32 - 1: 2^32 steps are one.
constexpr auto kRegisterSquarings = [] {
  std::array<Matrix, 32> powers{};
  for (std::size_t i = 0; i < 32; ++i) powers[0][i] = shr3cong_kernel::shiftRegisterStep(1u << i);
  for (std::size_t k = 1; k < powers.size(); ++k)
    for (std::size_t i = 0; i < 32; ++i)
      powers[k][i] = imageOf(powers[k - 1], imageOf(powers[k - 1], 1u << i));
  return powers;
}();

}  // namespace

shr3cong::shr3cong(std::uint32_t seed, bool fullPrecision) : CoreNormalRNG(fullPrecision) {
  shr3cong::reset(seed);
}

void shr3cong::reset(std::uint32_t seed) {
  state_ = {kCongruentialStart, seed == 0 ? kShiftRegisterDefault : seed};
}

void shr3cong::save(StateWord* words) const noexcept {
  words[0] = state_.congruential;
  words[1] = state_.shiftRegister;
}

bool shr3cong::load(StateWord const* words) noexcept {
  if (words[1] == 0) return false;
  const std::uint32_t shiftRegister = toLow32(words[1]);
  state_ = {toLow32(words[0]), shiftRegister == 0 ? kShiftRegisterDefault : shiftRegister};
  return true;
}

void shr3cong::randu(double* out, std::size_t n) {
  shr3cong_kernel::fill(Form{fullPrecision()}, Stores::cached, state_, out, n);
}

void shr3cong::randuStreaming(double* out, std::size_t n) {
  shr3cong_kernel::fill(Form{fullPrecision()}, Stores::streaming, state_, out, n);
}

errorID shr3cong::advance(std::uint64_t n) noexcept {
  uint128 steps = uint128{n} * (fullPrecision() ? 2 : 1);
  std::uint32_t factor = shr3cong_kernel::kFactor;  // of the congruential generator over 2^k steps
  std::uint32_t term = shr3cong_kernel::kTerm;
  for (std::size_t k = 0; steps > 0; ++k, steps /= 2) {
    if (steps % 2 != 0) {
      state_.congruential = factor * state_.congruential + term;
      state_.shiftRegister = imageOf(kRegisterSquarings[k % 32], state_.shiftRegister);
    }
    term += factor * term;
    factor *= factor;
  }
  return ok;
}

void shr3cong::randn(double* out, std::size_t n) {
  Ziggurat128 const& zig = Ziggurat128::tables();
  for (std::size_t i = 0; i < n; ++i) out[i] = normal(zig);
}

double shr3cong::normal(Ziggurat128 const& zig) noexcept {
  for (;;) {
    const std::uint32_t word = state_.step();
    const auto signedWord = static_cast<std::int32_t>(word);
    const std::uint32_t layer = word & 127;
    const std::uint32_t magnitude = signedWord < 0 ? 0 - word : word;
    const double x = signedWord * zig.width[layer];
    if (magnitude < zig.inside[layer]) return x;
    if (layer == 0) return signedWord > 0 ? tailNormal() : -tailNormal();
    const double height =
        zig.height[layer] + open32(state_.step()) * (zig.height[layer - 1] - zig.height[layer]);
    if (height < pinnedExp(-0.5 * x * x)) return x;
  }
}

// A normal given that it lies beyond the tail's start. Two steps for each candidate.
// Source: G. Marsaglia, Technometrics 6 (1964) 101-102.
double shr3cong::tailNormal() noexcept {
  for (;;) {
    const double x = -pinnedLog(open32(state_.step())) / Ziggurat128::kTailStart;
    const double y = -pinnedLog(open32(state_.step()));
    if (y + y >= x * x) return Ziggurat128::kTailStart + x;
  }
}

}  // namespace tfl_rng
