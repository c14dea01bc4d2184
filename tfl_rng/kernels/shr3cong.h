#pragma once

// Vector kernels of shr3cong: 32 draws at a time from the state before them.

#include <cstddef>

#include "tfl_rng/shr3cong.h"

namespace tfl_rng::shr3cong_kernel {

// How sums become a double: open32 of one, or open52 of two, the first one high (to_double.h).
struct Reduced {
  static constexpr std::size_t kStepsEach = 1;
};
struct Full {
  static constexpr std::size_t kStepsEach = 2;
};

// Fills out[0, n) with the draws after `state` and moves it on.
void fill(Reduced, shr3cong::State& state, double* out, std::size_t n);
void fill(Full, shr3cong::State& state, double* out, std::size_t n);

// The same, written past the caches.
void fillStreaming(Reduced, shr3cong::State& state, double* out, std::size_t n);
void fillStreaming(Full, shr3cong::State& state, double* out, std::size_t n);

}  // namespace tfl_rng::shr3cong_kernel
