#include "tfl_rng/mrg32k3a.h"

#include <bit>

#include "tfl_rng/modular.h"
#include "tfl_rng/splitmix.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng {
namespace {

using Words = mrg32k3a::Words;

constexpr std::uint64_t kM1 = mrg32k3a::kModulus1;
constexpr std::uint64_t kM2 = mrg32k3a::kModulus2;
constexpr std::uint64_t kA12 = 1403580;
constexpr std::uint64_t kA13n = 810728;
constexpr std::uint64_t kA21 = 527612;
constexpr std::uint64_t kA23n = 1370589;
constexpr double kNorm = 2.328306549295727688e-10;  // 1 / (m1 + 1), as published

using Mod1 = Modular3<mrg32k3a::kModulus1>;
using Mod2 = Modular3<mrg32k3a::kModulus2>;

// One step as a matrix on the last three terms.
constexpr Mod1::Matrix kStep1 = {{{0, 1, 0}, {0, 0, 1}, {kM1 - kA13n, kA12, 0}}};
constexpr Mod2::Matrix kStep2 = {{{0, 1, 0}, {0, 0, 1}, {kM2 - kA23n, 0, kA21}}};

// Powers of two of a step, as far as the highest bit of a stream index reaches.
constexpr std::size_t kPowers = mrg32k3a::kLog2StreamLen + 64;
constexpr auto kPowers1 = Mod1::squarings<kPowers>(kStep1);
constexpr auto kPowers2 = Mod2::squarings<kPowers>(kStep2);

// Makes one step; its output u.
double step(Words& s) noexcept {
  const std::uint64_t x = (kA12 * s[1] + kA13n * (kM1 - s[0])) % kM1;
  const std::uint64_t y = (kA21 * s[5] + kA23n * (kM2 - s[3])) % kM2;
  s = {s[1], s[2], static_cast<std::uint32_t>(x), s[4], s[5], static_cast<std::uint32_t>(y)};
  const std::uint64_t z = x > y ? x - y : x + kM1 - y;
  return static_cast<double>(z) * kNorm;
}

double increasedPrecision(double u1, double u2) noexcept {
  const double sum = u1 + u2 * 0x1p-24;
  const double u = sum < 1 ? sum : sum - 1;
  return u == 0 ? kSmallestUniform : u;
}

Words seededWords(std::uint32_t seed) noexcept {
  if (seed == 0) return {12345, 12345, 12345, 12345, 12345, 12345};
  SplitMix64 source(seed);
  Words words;
  for (std::size_t group : {0, 3}) {
    do {
      for (std::size_t i = group; i < group + 3; ++i) {
        words[i] = static_cast<std::uint32_t>(source.next() % (group == 0 ? kM1 : kM2));
      }
    } while (words[group] == 0 && words[group + 1] == 0 && words[group + 2] == 0);
  }
  return words;
}

}  // namespace

mrg32k3a::mrg32k3a(std::uint32_t seed, std::size_t streamIndex, bool fullPrecision)
    : CoreStreamRNG(streamIndex, fullPrecision) {
  reset(seed);
}

Words mrg32k3a::ahead(Words words, std::uint64_t count, unsigned log2Steps) noexcept {
  Mod1::Vector x = {words[0], words[1], words[2]};
  Mod2::Vector y = {words[3], words[4], words[5]};
  for (; count != 0; count &= count - 1) {
    const auto power = log2Steps + static_cast<unsigned>(std::countr_zero(count));
    x = Mod1::apply(kPowers1[power], x);
    y = Mod2::apply(kPowers2[power], y);
  }
  return {x[0], x[1], x[2], y[0], y[1], y[2]};
}

void mrg32k3a::reset(std::uint32_t seed) {
  state_.start = ahead(seededWords(seed), streamIndex(), kLog2StreamLen);
  setSubstream(0);
}

void mrg32k3a::randu(double* out, std::size_t n) {
  Words words = state_.current;
  if (fullPrecision()) {
    for (std::size_t i = 0; i < n; ++i) {
      const double u1 = step(words);
      out[i] = increasedPrecision(u1, step(words));
    }
  } else {
    for (std::size_t i = 0; i < n; ++i) out[i] = step(words);
  }
  state_.current = words;
}

errorID mrg32k3a::advance(std::size_t n) {
  state_.current = ahead(state_.current, n, fullPrecision() ? 1 : 0);
  return ok;
}

errorID mrg32k3a::setSubstream(std::size_t index) {
  if (index >= kNumSubstreams) return indexOutOfRange;
  state_.current = ahead(state_.start, index, kLog2SubstreamLen);
  noteSubstream(index);
  return ok;
}

}  // namespace tfl_rng
