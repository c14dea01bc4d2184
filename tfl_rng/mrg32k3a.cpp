#include "tfl_rng/mrg32k3a.h"

#include <algorithm>
#include <bit>

#include "tfl_rng/kernels/mrg32k3a.h"
#include "tfl_rng/kernels/mrg32k3a_reference.h"
#include "tfl_rng/modular.h"
#include "tfl_rng/saved_words.h"
#include "tfl_rng/splitmix.h"

namespace tfl_rng {
namespace {

using Words = mrg32k3a::Words;

constexpr std::uint64_t kM1 = mrg32k3a::kModulus1;
constexpr std::uint64_t kM2 = mrg32k3a::kModulus2;

using Mod1 = Modular3<mrg32k3a::kModulus1>;
using Mod2 = Modular3<mrg32k3a::kModulus2>;

// Powers of two of a step, as far as the highest bit of a stream index reaches.
constexpr std::size_t kPowers = mrg32k3a::kLog2StreamLen + 64;
constexpr auto kPowers1 = Mod1::squarings<kPowers>(mrg32k3a_steps::kStep1);
constexpr auto kPowers2 = Mod2::squarings<kPowers>(mrg32k3a_steps::kStep2);

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

bool areTerms(std::uint32_t const* words, std::uint32_t modulus) noexcept {
  return !allZero(words, 3) && std::all_of(words, words + 3, [=](auto w) { return w < modulus; });
}

bool areWords(std::uint32_t const* words) noexcept {
  return areTerms(words, mrg32k3a::kModulus1) && areTerms(words + 3, mrg32k3a::kModulus2);
}

}  // namespace

mrg32k3a::mrg32k3a(std::uint32_t seed, std::uint64_t streamIndex, bool fullPrecision)
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

void mrg32k3a::save(StateWord* words) const noexcept {
  words = std::ranges::copy(state_.current, words).out;
  std::ranges::copy(state_.start, words);
}

bool mrg32k3a::load(StateWord const* words) noexcept {
  if (!areWords(words) || !areWords(words + 6)) return false;
  std::copy_n(words, 6, state_.current.begin());
  std::copy_n(words + 6, 6, state_.start.begin());
  return true;
}

void mrg32k3a::randu(double* out, std::size_t n) {
  mrg32k3a_steps::fill(Form{fullPrecision()}, state_.current, out, n);
}

errorID mrg32k3a::advance(std::uint64_t n) {
  state_.current = ahead(state_.current, n, fullPrecision() ? 1 : 0);
  return ok;
}

errorID mrg32k3a::setSubstream(std::uint64_t index) {
  if (index >= kNumSubstreams) return indexOutOfRange;
  state_.current = ahead(state_.start, index, kLog2SubstreamLen);
  noteSubstream(index);
  return ok;
}

}  // namespace tfl_rng
