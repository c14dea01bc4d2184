#pragma once

// Vector kernels of shr3cong: 32 draws at a time from the state before them.

#include <cstddef>
#include <cstdint>

#include "tfl_rng/kernels/form.h"

namespace tfl_rng::shr3cong_kernel {

inline constexpr std::uint32_t kFactor = 69069;
inline constexpr std::uint32_t kTerm = 1234567;

// One step of each part alone.
constexpr std::uint32_t congruentialStep(std::uint32_t word) noexcept {
  return kFactor * word + kTerm;
}
constexpr std::uint32_t shiftRegisterStep(std::uint32_t word) noexcept {
  word ^= word << 13;
  word ^= word >> 17;
  return word ^ (word << 5);
}

struct State {
  std::uint32_t congruential;
  // 0 is legal and leaves the congruential generator alone.
  std::uint32_t shiftRegister;

  std::uint32_t step() noexcept {
    congruential = congruentialStep(congruential);
    shiftRegister = shiftRegisterStep(shiftRegister);
    return congruential + shiftRegister;
  }
  bool operator==(State const&) const = default;
};

// Fills out[0, n) with the draws after `state` and moves it on. A draw is open32 of one sum, or
// open52 of two, the first one high (to_double.h).
void fill(Form form, Stores stores, State& state, double* out, std::size_t n);

}  // namespace tfl_rng::shr3cong_kernel
