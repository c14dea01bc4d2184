#include "tfl_rng/dsfmt19937.h"

#include <algorithm>
#include <bit>

#include "tfl_rng/core_ziggurat.h"

namespace tfl_rng {
namespace {

using State = dsfmt19937::State;

constexpr std::size_t kN = 191;    // pairs
constexpr std::size_t kPos = 117;  // distance of the second pair of the recurrence
constexpr std::uint64_t kMask[2] = {0x000ffafffffffb3f, 0x000ffdfffc90fffd};
constexpr std::uint64_t kFix[2] = {0x90014964b32f4329, 0x3b8d12ac548a7c7a};
constexpr std::uint64_t kParityCheck[2] = {0x3d84e1ac0dc82880, 0x0000000000000001};
constexpr std::uint64_t kMantissa = 0x000fffffffffffff;
constexpr std::uint64_t kExponentOfOne = 0x3ff0000000000000;

// One step: the pair at `a` and the one kPos further (round the table) turn the lung, and the lung
// turns the pair at `a` into the next two outputs.
inline void step(std::uint64_t* a, std::uint64_t const* b, std::uint64_t* lung) {
  const std::uint64_t old0 = lung[0];
  const std::uint64_t old1 = lung[1];
  lung[0] = (a[0] << 19) ^ std::rotl(old1, 32) ^ b[0];
  lung[1] = (a[1] << 19) ^ std::rotl(old0, 32) ^ b[1];
  a[0] ^= (lung[0] >> 12) ^ (lung[0] & kMask[0]);
  a[1] ^= (lung[1] >> 12) ^ (lung[1] & kMask[1]);
}

void regenerate(State& state) {
  std::uint64_t* w = state.words.data();
  std::uint64_t lung[2] = {w[2 * kN], w[2 * kN + 1]};
  std::size_t i = 0;
  for (; i < kN - kPos; ++i) step(w + 2 * i, w + 2 * (i + kPos), lung);
  for (; i < kN; ++i) step(w + 2 * i, w + 2 * (i + kPos - kN), lung);
  w[2 * kN] = lung[0];
  w[2 * kN + 1] = lung[1];
  state.position = 0;
}

// Makes sure that at least one output is left.
inline void prepare(State& state) {
  if (state.position > dsfmt19937::kOutputs) state.position %= dsfmt19937::kOutputs + 1;
  if (state.position == dsfmt19937::kOutputs) regenerate(state);
}

inline double openOpen(std::uint64_t word) {
  return std::bit_cast<double>((word & kMantissa) | kExponentOfOne | 1) - 1;
}

// Layer in bits 0 to 7, sign in bit 8, magnitude in bits 9 to 51 of a word.
struct NormalSource {
  State& state;

  std::uint64_t word() {
    prepare(state);
    return state.words[state.position++];
  }
  ziggurat::Candidate candidate() {
    const std::uint64_t bits = word();
    const std::uint64_t magnitude = (bits & kMantissa & ~std::uint64_t{0x1ff}) | kExponentOfOne;
    return {static_cast<std::uint32_t>(bits & 255), (bits & 256) != 0,
            std::bit_cast<double>(magnitude) - (1 - 0x1p-44)};
  }
  double uniform() { return openOpen(word()); }
};

// The parity that puts the state on the cycle of full period.
bool onFullCycle(State const& state) {
  std::uint64_t bits = 0;
  for (int j = 0; j < 2; ++j) bits ^= (state.words[2 * kN + j] ^ kFix[j]) & kParityCheck[j];
  return std::popcount(bits) % 2 == 1;
}

}  // namespace

dsfmt19937::dsfmt19937(std::uint32_t seed, bool fullPrecision) : CoreNormalRNG(fullPrecision) {
  dsfmt19937::reset(seed);
}

void dsfmt19937::reset(std::uint32_t seed) { state_ = seeded(seed); }

State dsfmt19937::seeded(std::uint32_t seed) noexcept {
  State state{};
  std::uint32_t last = seed;
  std::uint32_t i = 0;
  for (auto& word : state.words) {
    const std::uint32_t low = i == 0 ? seed : 1812433253u * (last ^ (last >> 30)) + i;
    last = 1812433253u * (low ^ (low >> 30)) + (i + 1);
    word = (std::uint64_t{last} << 32) | low;
    i += 2;
  }
  for (std::size_t j = 0; j < kOutputs; ++j)
    state.words[j] = (state.words[j] & kMantissa) | kExponentOfOne;
  if (!onFullCycle(state)) state.words[2 * kN + 1] ^= 1;
  state.position = kOutputs;
  return state;
}

void dsfmt19937::randu(double* out, std::size_t n) {
  while (n > 0) {
    prepare(state_);
    const std::size_t count = std::min<std::size_t>(n, kOutputs - state_.position);
    std::uint64_t const* words = state_.words.data() + state_.position;
    for (std::size_t i = 0; i < count; ++i) out[i] = openOpen(words[i]);
    state_.position += static_cast<std::uint32_t>(count);
    out += count;
    n -= count;
  }
}

void dsfmt19937::randn(double* out, std::size_t n) {
  NormalSource source{state_};
  for (std::size_t i = 0; i < n; ++i) out[i] = ziggurat::normal(source);
}

}  // namespace tfl_rng
