#include "tfl_rng/core_ziggurat.h"

#include "tfl_rng/elementary.h"

namespace tfl_rng::ziggurat {

bool underDensity(std::uint32_t layer, double x, double u) noexcept {
  const double height = kF[layer + 1] + (kF[layer] - kF[layer + 1]) * u;
  return pinnedExp(-0.5 * (x * x)) > height;
}

double tailAttempt(double u1, double u2) noexcept {
  const double beyond = -pinnedLog(u1) * kInverseTailStart;
  return -2 * pinnedLog(u2) > beyond * beyond ? kTailStart + beyond : -1;
}

}  // namespace tfl_rng::ziggurat
