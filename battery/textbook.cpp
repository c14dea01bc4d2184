// Textbook generators, written here from their published recurrences and nowhere else used.

#include "battery/textbook.h"

#include <array>
#include <cmath>

namespace battery {

namespace {

// S. K. Park, K. W. Miller, Communications of the ACM 31 (1988): a lone multiplicative generator.
struct MinimalStandard {
  static constexpr std::uint64_t kModulus = 0x7fffffff;
  std::uint64_t x;
  explicit MinimalStandard(std::uint32_t seed) : x(1 + seed % (kModulus - 1)) {}
  double operator()() {
    x = 16807 * x % kModulus;
    return static_cast<double>(x) / static_cast<double>(kModulus);
  }
};

// G. Marsaglia's 69069: a lone congruential generator modulo 2^32.
struct Congruential {
  std::uint32_t x;
  explicit Congruential(std::uint32_t seed) : x(seed) {}
  double operator()() {
    x = 69069 * x + 1234567;
    return (x + 0.5) * 0x1p-32;
  }
};

// G. Marsaglia, Journal of Statistical Software 8 (2003) 14: a lone 32-bit shift register.
struct ShiftRegister {
  std::uint32_t x;
  explicit ShiftRegister(std::uint32_t seed) : x(seed + 2463534242U) {}
  double operator()() {
    x ^= x << 13;
    x ^= x >> 17;
    x ^= x << 5;
    return (x + 0.5) * 0x1p-32;
  }
};

// G. Marsaglia, A. Zaman, Annals of Applied Probability 1 (1991): subtract-with-borrow with the
// lags 12 and 27 and nothing behind it.
struct SubtractWithBorrow {
  std::array<double, 27> z;  // a ring
  std::size_t at = 0;        // of z(n - 27)
  double borrow = 0;
  explicit SubtractWithBorrow(std::uint32_t seed) : z() {
    MinimalStandard start(seed);
    for (double& value : z) value = std::floor(start() * 0x1p31) * 0x1p-31 + start() * 0x1p-31;
    for (double& value : z) value = std::floor(value * 0x1p53) * 0x1p-53;
  }
  double operator()() {
    double next = z[(at + 27 - 12) % 27] - z[at] - borrow;
    borrow = next < 0 ? 0x1p-53 : 0;
    if (next < 0) next += 1;
    z[at] = next;
    at = (at + 1) % 27;
    return next > 0 ? next : 0x1p-53;
  }
};

// P. L'Ecuyer, Operations Research 47 (1999): MRG32k3a, one step a number.
struct OneStepMrg {
  static constexpr std::int64_t kM1 = 4294967087, kM2 = 4294944443;
  std::array<std::int64_t, 3> s1, s2;
  explicit OneStepMrg(std::uint32_t seed)
      : s1{12345, 12345, 1 + std::int64_t{seed}}, s2{12345, 12345, 12345} {}
  double operator()() {
    std::int64_t const next1 = ((1403580 * s1[1] - 810728 * s1[0]) % kM1 + kM1) % kM1;
    std::int64_t const next2 = ((527612 * s2[2] - 1370589 * s2[0]) % kM2 + kM2) % kM2;
    s1 = {s1[1], s1[2], next1};
    s2 = {s2[1], s2[2], next2};
    std::int64_t const z = (next1 - next2 + kM1) % kM1;
    return static_cast<double>(z == 0 ? kM1 : z) / static_cast<double>(kM1 + 1);
  }
};

template <class Generator>
Source textbook(char const* name, int bits, std::vector<std::size_t> offsets = {}) {
  return {name, bits, std::move(offsets), [](std::uint32_t seed) {
            return [generator = Generator(seed)](std::span<double> out) mutable {
              for (double& u : out) u = generator();
            };
          }};
}

}  // namespace

std::vector<Source> textbookSources() {
  return {
      textbook<MinimalStandard>("16807, one word", 31),
      textbook<Congruential>("congruential alone", 32),
      textbook<ShiftRegister>("shift register alone", 32),
      textbook<SubtractWithBorrow>("subtract-with-borrow, plain", 53, {0, 15, 27}),
      // Its 32 bits are good (that is the reduced precision of the library); the bits below them
      // are not.
      textbook<OneStepMrg>("MRG32k3a, one step as 53 bits", 53),
  };
}

}  // namespace battery
