#include "tfl_rng/shr3cong.h"

#include "tfl_rng/elementary.h"
#include "tfl_rng/kernels/shr3cong.h"
#include "tfl_rng/to_double.h"
#include "tfl_rng/ziggurat128.h"

namespace tfl_rng {

shr3cong::shr3cong(std::uint32_t seed, bool fullPrecision) : CoreNormalRNG(fullPrecision) {
  shr3cong::reset(seed);
}

void shr3cong::reset(std::uint32_t seed) {
  state_ = {kCongruentialStart, seed == 0 ? kShiftRegisterDefault : seed};
}

void shr3cong::randu(double* out, std::size_t n) {
  namespace kernels = shr3cong_kernel;
  if (fullPrecision()) {
    kernels::fill(kernels::Full{}, state_, out, n);
  } else {
    kernels::fill(kernels::Reduced{}, state_, out, n);
  }
}

void shr3cong::randuStreaming(double* out, std::size_t n) {
  namespace kernels = shr3cong_kernel;
  if (fullPrecision()) {
    kernels::fillStreaming(kernels::Full{}, state_, out, n);
  } else {
    kernels::fillStreaming(kernels::Reduced{}, state_, out, n);
  }
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
