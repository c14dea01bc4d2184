#pragma once

// The scalar form of the shr3cong kernels: what they must equal.

#include <cstddef>
#include <cstdint>

#include "tfl_rng/kernels/shr3cong.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng::shr3cong_kernel::reference {

inline double draw(Reduced, State& state) noexcept { return open32(state.step()); }

inline double draw(Full, State& state) noexcept {
  const std::uint64_t high = state.step();
  return open52(high << 32 | state.step());
}

template <class Precision>
void fill(Precision precision, State& state, double* out, std::size_t n) noexcept {
  for (std::size_t i = 0; i < n; ++i) out[i] = draw(precision, state);
}

}  // namespace tfl_rng::shr3cong_kernel::reference
