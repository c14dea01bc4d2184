#include "tfl_rng/mt19937ar.h"

#include <algorithm>

#include "tfl_rng/core_ziggurat.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng {
namespace {

constexpr std::uint32_t kDefaultSeed = 5489;
constexpr std::size_t kN = mt19937ar::kWords;
constexpr std::size_t kM = 397;

// The twist: the top bit of u joined to the low 31 bits of v, times the matrix A.
inline std::uint32_t twist(std::uint32_t u, std::uint32_t v) {
  const std::uint32_t joined = (u & 0x80000000u) | (v & 0x7fffffffu);
  return (joined >> 1) ^ ((0u - (v & 1u)) & 0x9908b0dfu);
}

inline std::uint32_t temper(std::uint32_t y) {
  y ^= y >> 11;
  y ^= (y << 7) & 0x9d2c5680u;
  y ^= (y << 15) & 0xefc60000u;
  return y ^ (y >> 18);
}

void regenerate(mt19937ar::State& state) {
  auto& w = state.words;
  std::size_t i = 0;
  for (; i < kN - kM; ++i) w[i] = w[i + kM] ^ twist(w[i], w[i + 1]);
  for (; i < kN - 1; ++i) w[i] = w[i + kM - kN] ^ twist(w[i], w[i + 1]);
  w[i] = w[kM - 1] ^ twist(w[i], w[0]);
  state.position = 0;
}

inline std::uint32_t nextWord(mt19937ar::State& state) {
  if (state.position == kN) regenerate(state);
  return temper(state.words[state.position++]);
}

void fillFull(mt19937ar::State& state, double* out, std::size_t n) {
  while (n > 0) {
    const std::size_t pairs = std::min<std::size_t>(n, (kN - state.position) / 2);
    std::uint32_t const* words = state.words.data() + state.position;
    for (std::size_t i = 0; i < pairs; ++i)
      out[i] = res53(temper(words[2 * i]), temper(words[2 * i + 1]));
    state.position += static_cast<std::uint32_t>(2 * pairs);
    out += pairs;
    n -= pairs;
    if (n == 0) return;
    // At most one word is left: this double may take its halves from two vectors.
    const std::uint32_t high = nextWord(state);
    *out++ = res53(high, nextWord(state));
    --n;
  }
}

void fillReduced(mt19937ar::State& state, double* out, std::size_t n) {
  while (n > 0) {
    if (state.position == kN) regenerate(state);
    const std::size_t count = std::min<std::size_t>(n, kN - state.position);
    std::uint32_t const* words = state.words.data() + state.position;
    for (std::size_t i = 0; i < count; ++i) out[i] = open32(temper(words[i]));
    state.position += static_cast<std::uint32_t>(count);
    out += count;
    n -= count;
  }
}

// Layer in bits 0 to 7, sign in bit 8, magnitude in bits 12 to 63 of a 64-bit value.
struct NormalSource {
  mt19937ar::State& state;

  std::uint64_t value() {
    const std::uint64_t low = nextWord(state);
    return (std::uint64_t{nextWord(state)} << 32) | low;
  }
  ziggurat::Candidate candidate() {
    const std::uint64_t bits = value();
    return {static_cast<std::uint32_t>(bits & 255), (bits & 256) != 0, open52(bits)};
  }
  double uniform() { return open52(value()); }
};

}  // namespace

mt19937ar::mt19937ar(std::uint32_t seed, bool fullPrecision) : CoreNormalRNG(fullPrecision) {
  mt19937ar::reset(seed);
}

void mt19937ar::reset(std::uint32_t seed) { state_ = seeded(seed == 0 ? kDefaultSeed : seed); }

mt19937ar::State mt19937ar::seeded(std::uint32_t seed) noexcept {
  State state;
  state.words[0] = seed;
  for (std::uint32_t i = 1; i < kN; ++i) {
    const std::uint32_t last = state.words[i - 1];
    state.words[i] = 1812433253u * (last ^ (last >> 30)) + i;
  }
  state.position = kN;
  return state;
}

void mt19937ar::randu(double* out, std::size_t n) {
  if (fullPrecision())
    fillFull(state_, out, n);
  else
    fillReduced(state_, out, n);
}

void mt19937ar::randn(double* out, std::size_t n) {
  NormalSource source{state_};
  for (std::size_t i = 0; i < n; ++i) out[i] = ziggurat::normal(source);
}

}  // namespace tfl_rng
