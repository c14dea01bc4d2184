#pragma once

// Odd 64-bit words as powers: modulo 2^64 each is (-1)^s 3^y for one s of 0 and 1 and one y below
// 2^62. Products of words are sums of their s modulo 2 and of their y modulo 2^62.

#include <array>
#include <cstddef>
#include <cstdint>

namespace tfl_rng {

struct OddPower {
  std::uint64_t exponent;  // y; any number congruent modulo 2^62 means the same word
  bool negative;           // s
};

namespace odd_power {

// The first k with (3^(2^k) - 1)^2 = 0 modulo 2^64: powers of 3^(2^k) are linear in the exponent.
inline constexpr std::size_t kLinear = 30;

constexpr std::uint64_t inverse(std::uint64_t odd) noexcept {
  std::uint64_t x = odd;  // right modulo 8; each step doubles the bits
  for (int i = 0; i < 5; ++i) x *= 2 - odd * x;
  return x;
}

// base^(2^k) for k = 0 to kLinear.
constexpr std::array<std::uint64_t, kLinear + 1> squarings(std::uint64_t base) noexcept {
  std::array<std::uint64_t, kLinear + 1> powers{base};
  for (std::size_t k = 1; k <= kLinear; ++k) powers[k] = powers[k - 1] * powers[k - 1];
  return powers;
}

inline constexpr auto kPowers = squarings(3);
inline constexpr auto kInversePowers = squarings(inverse(3));
// 3^(2^30) = 1 + 2^32 * kSlope, kSlope odd.
inline constexpr std::uint64_t kSlope = kPowers[kLinear] >> 32;
static_assert((kPowers[kLinear] & 0xFFFFFFFF) == 1 && kSlope % 2 == 1);

}  // namespace odd_power

// The word of a power.
constexpr std::uint64_t wordOf(OddPower power) noexcept {
  using namespace odd_power;
  std::uint64_t word = 1 + (power.exponent >> kLinear) * (kPowers[kLinear] - 1);
  for (std::size_t k = 0; k < kLinear; ++k) {
    word *= (power.exponent >> k & 1) != 0 ? kPowers[k] : 1;
  }
  return power.negative ? -word : word;
}

// The power of an odd word, with the exponent below 2^62.
constexpr OddPower powerOf(std::uint64_t word) noexcept {
  using namespace odd_power;
  // Modulo 8 the powers of 3 are 1 and 3.
  const bool negative = (word & 4) != 0;
  std::uint64_t rest = negative ? -word : word;
  std::uint64_t exponent = 0;
  // Bit k of the exponent shows as soon as all lower ones are divided out: 3^(2^k) is 1 + 2^(k+2)
  // modulo 2^(k+3), and 3 itself is 1 + 2 modulo 4.
  for (std::size_t k = 0; k < kLinear; ++k) {
    const std::uint64_t bit = rest >> (k == 0 ? 1 : k + 2) & 1;
    exponent |= bit << k;
    rest *= bit != 0 ? kInversePowers[k] : 1;
  }
  // What is left is 3^(2^30 z) = 1 + 2^32 kSlope z.
  const std::uint64_t z = (rest >> 32) * inverse(kSlope) & 0xFFFFFFFF;
  return {exponent | z << kLinear, negative};
}

}  // namespace tfl_rng
