#pragma once

// SplitMix64: spreads a small seed over many state words.
// Source: G. L. Steele, D. Lea, C. H. Flood, Fast splittable pseudorandom number generators,
// OOPSLA 2014, with the finaliser of variant 13 by D. Stafford.

#include <cstdint>

namespace tfl_rng {

// The finaliser: a bijection of 64-bit words in which every output bit depends on every input bit.
constexpr std::uint64_t mix64(std::uint64_t z) noexcept {
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
  return z ^ (z >> 31);
}

class SplitMix64 {
 public:
  constexpr explicit SplitMix64(std::uint64_t seed) noexcept : state_(seed) {}

  constexpr std::uint64_t next() noexcept {
    state_ += 0x9E3779B97F4A7C15;
    return mix64(state_);
  }

 private:
  std::uint64_t state_;
};

}  // namespace tfl_rng
