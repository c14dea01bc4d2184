#pragma once

// The scalar form of the mrg32k3a kernels: what they must equal, and what makes a few draws.

#include <algorithm>

#include "tfl_rng/kernels/mrg32k3a.h"
#include "tfl_rng/modular.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng::mrg32k3a_steps {

inline constexpr std::uint64_t kM1 = 4294967087;
inline constexpr std::uint64_t kM2 = 4294944443;
inline constexpr std::uint64_t kA12 = 1403580;
inline constexpr std::uint64_t kA13n = 810728;
inline constexpr std::uint64_t kA21 = 527612;
inline constexpr std::uint64_t kA23n = 1370589;
inline constexpr double kNorm = 2.328306549295727688e-10;  // 1 / (m1 + 1), as published

// A step as a matrix on the last three terms.
inline constexpr Modular3<kM1>::Matrix kStep1 = {{{0, 1, 0}, {0, 0, 1}, {kM1 - kA13n, kA12, 0}}};
inline constexpr Modular3<kM2>::Matrix kStep2 = {{{0, 1, 0}, {0, 0, 1}, {kM2 - kA23n, 0, kA21}}};

namespace reference {

// Modulo m = 2^32 - c a number equals its low 32 bits and c times those above.
template <std::uint64_t m>
constexpr std::uint64_t fold(std::uint64_t value) noexcept {
  constexpr std::uint64_t kRadix = std::uint64_t{1} << 32;
  return value % kRadix + value / kRadix * (kRadix - m);
}

// Makes one step; its output u.
inline double step(Words& s) noexcept {
  // Both sums are below 2^54, which leaves less than twice the modulus.
  std::uint64_t x = fold<kM1>(kA12 * s[1] + kA13n * (kM1 - s[0]));
  std::uint64_t y = fold<kM2>(fold<kM2>(kA21 * s[5] + kA23n * (kM2 - s[3])));
  x = std::min(x, x - kM1);  // where x is the smaller one, the difference wraps around
  y = std::min(y, y - kM2);
  s = {s[1], s[2], static_cast<std::uint32_t>(x), s[4], s[5], static_cast<std::uint32_t>(y)};
  const std::uint64_t z = x > y ? x - y : x + kM1 - y;
  return static_cast<double>(static_cast<std::int64_t>(z)) * kNorm;
}

inline double draw(Reduced, Words& words) noexcept { return step(words); }

inline double draw(Full, Words& words) noexcept {
  const double first = step(words);
  const double sum = first + step(words) * 0x1p-24;
  const double u = sum < 1 ? sum : sum - 1;
  return u == 0 ? kSmallestUniform : u;
}

template <class Precision>
void fill(Precision precision, Words& words, double* out, std::size_t n) noexcept {
  for (std::size_t i = 0; i < n; ++i) out[i] = draw(precision, words);
}

}  // namespace reference
}  // namespace tfl_rng::mrg32k3a_steps
