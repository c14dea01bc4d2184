#pragma once

// Vector kernel of swb2712: twelve draws at a time, as the nearer lag allows, in registers. A
// borrow is the sign of the difference before; only where that is 0 or 1 does it matter what came
// before.

#include <array>
#include <cstddef>
#include <cstdint>

namespace tfl_rng::swb2712_kernel {

inline constexpr std::size_t kLags = 32;

struct State {
  // Each in [2^-53, 1). Values that are no multiple of 2^-53 are kept as they are and cut down
  // to one where they are used.
  std::array<double, kLags> lags;
  bool borrow;
  std::uint32_t position;  // below kLags
  std::uint32_t counter;

  bool operator==(State const&) const = default;
};

// Fills out[0, n) with the draws after `state` and moves it on.
void fill(State& state, double* out, std::size_t n);

}  // namespace tfl_rng::swb2712_kernel
