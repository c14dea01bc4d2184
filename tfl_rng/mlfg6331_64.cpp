#include "tfl_rng/mlfg6331_64.h"

#include <algorithm>
#include <bit>

#include "tfl_rng/kernels/mlfg6331.h"
#include "tfl_rng/kernels/mlfg6331_reference.h"
#include "tfl_rng/modular.h"
#include "tfl_rng/odd_power.h"
#include "tfl_rng/splitmix.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng {
namespace {

using Table = mlfg6331_64::Table;
using Trinomial = ModularTrinomial<mlfg6331_64::kLag, mlfg6331_64::kLag - mlfg6331_64::kShortLag>;
using Polynomial = Trinomial::Polynomial;

constexpr std::size_t kLag = mlfg6331_64::kLag;

// Below this it does not pay to put the ring in order.
constexpr std::size_t kFewDraws = 32;

// Longest way that is stepped rather than jumped: about as many steps as a jump takes time.
constexpr std::size_t kMostSteps = 131072;

// Powers of two of t: as far as the last substream's start lies from the first.
constexpr std::size_t kPowers = mlfg6331_64::kLog2SubstreamLen + 64;

// A microsecond or so each, when the first jump asks for them.
std::array<Polynomial, kPowers> const& powers() {
  static const auto table = Trinomial::squarings<kPowers>();
  return table;
}

// A table as exponents and signs.
struct Powers {
  std::array<std::uint64_t, kLag> exponents;
  std::array<std::uint64_t, kLag> signs;  // modulo 2
};

// The canonical table of a seed and a stream; see the header.
Table canonicalTable(std::uint32_t seed, std::uint64_t streamIndex) noexcept {
  constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;  // scatters neighbouring indices
  constexpr std::uint64_t kSeedBits = 0x1FFFFFFFE;    // bits 1 to 32
  SplitMix64 source(mix64(mix64(streamIndex) + seed));
  Table table;
  for (std::size_t i = 0; i < kLag; ++i) {
    std::uint64_t exponent = source.next() & ~std::uint64_t{1};
    if (i == 0) exponent |= 1;
    if (i == 1) exponent = streamIndex * kOdd << 1;
    if (i == 2) exponent = (exponent & ~kSeedBits) | std::uint64_t{seed} << 1;
    if (i == 15) exponent = 0;
    table[i] = wordOf({exponent, source.next() >> 63 != 0});
  }
  return table;
}

}  // namespace

mlfg6331_64::mlfg6331_64(std::uint32_t seed, std::uint64_t streamIndex, bool fullPrecision)
    : CoreStreamRNG(streamIndex, fullPrecision) {
  reset(seed);
}

bool mlfg6331_64::jump(Table& table, std::uint64_t count, unsigned log2Steps) {
  if (std::ranges::any_of(table, [](std::uint64_t word) { return word % 2 == 0; })) return false;
  Powers terms;
  for (std::size_t i = 0; i < kLag; ++i) {
    const OddPower power = powerOf(table[i]);
    terms.exponents[i] = power.exponent;
    terms.signs[i] = power.negative;
  }
  for (; count != 0; count &= count - 1) {
    auto const& steps = powers()[log2Steps + static_cast<unsigned>(std::countr_zero(count))];
    mlfg6331::apply(steps, terms.exponents);
    mlfg6331::apply(steps, terms.signs);
  }
  for (std::size_t i = 0; i < kLag; ++i) {
    table[i] = wordOf({terms.exponents[i], terms.signs[i] % 2 != 0});
  }
  return true;
}

void mlfg6331_64::reset(std::uint32_t seed) {
  start_ = canonicalTable(seed, streamIndex());
  setSubstream(0);
}

// Word i of the state's ring is written in the steps i, i + 63 and so on from the first position,
// so that the oldest word stands n places on after n steps.

mlfg6331_64::State mlfg6331_64::state() const noexcept {
  State state{{}, position_, start_};
  const auto position = static_cast<std::size_t>(position_);
  for (std::size_t i = 0; i < kLag; ++i) {
    state.ring[(position + i) % kLag] = words_[(oldest_ + i) % kLag];
  }
  return state;
}

void mlfg6331_64::setState(State const& state) noexcept {
  words_ = state.ring;
  position_ = state.position;
  oldest_ = static_cast<std::size_t>(state.position);
  start_ = state.start;
}

void mlfg6331_64::save(StateWord* words) const noexcept {
  State const saved = state();
  words = std::ranges::copy(saved.ring, words).out;
  *words++ = 1;
  words = std::ranges::copy(saved.start, words).out;
  *words++ = 1;
  *words++ = 0;
  *words = saved.position;
}

bool mlfg6331_64::load(StateWord const* words) noexcept {
  constexpr std::size_t kStart = kLag + 1;
  constexpr std::size_t kPosition = kStateWords - 1;
  if (!std::all_of(words, words + 2 * kStart, [](StateWord word) { return word % 2 != 0; }) ||
      words[kPosition] >= kLag)
    return false;
  State loaded;
  std::copy_n(words, kLag, loaded.ring.begin());
  loaded.position = words[kPosition];
  std::copy_n(words + kStart, kLag, loaded.start.begin());
  setState(loaded);
  return true;
}

Table& mlfg6331_64::inOrder(std::uint64_t n) noexcept {
  if (oldest_ != 0) {
    Table ordered;
    std::ranges::rotate_copy(words_, words_.begin() + oldest_, ordered.begin());
    words_ = ordered;
    oldest_ = 0;
  }
  position_ = (position_ + n % kLag) % kLag;
  return words_;
}

void mlfg6331_64::randu(double* out, std::size_t n) {
  if (n >= kFewDraws) return mlfg6331::run(Stores::cached, inOrder(n), out, n);
  std::size_t oldest = oldest_;
  for (std::size_t i = 0; i < n; ++i) {
    out[i] = open52(mlfg6331::reference::step(words_, oldest));
  }
  oldest_ = oldest;
  position_ += n;
  if (position_ >= kLag) position_ -= kLag;
}

void mlfg6331_64::randuStreaming(double* out, std::size_t n) {
  mlfg6331::run(Stores::streaming, inOrder(n), out, n);
}

errorID mlfg6331_64::advance(std::uint64_t n) {
  if (n <= kMostSteps) {
    mlfg6331::run(Stores::cached, inOrder(n), nullptr, static_cast<std::size_t>(n));
    return ok;
  }
  Table jumped = inOrder(0);
  if (!jump(jumped, n, 0)) return cannotComputeState;
  inOrder(n) = jumped;
  return ok;
}

errorID mlfg6331_64::setSubstream(std::uint64_t index) {
  if (index >= kNumSubstreams) return indexOutOfRange;
  Table table = start_;
  if (index != 0 && !jump(table, index, kLog2SubstreamLen)) return cannotComputeState;
  words_ = table;
  oldest_ = 0;
  position_ = 0;
  noteSubstream(index);
  return ok;
}

}  // namespace tfl_rng
