#include "tfl_rng/dsfmt19937.h"

#include <algorithm>
#include <bit>

#include "tfl_rng/core_ziggurat.h"
#include "tfl_rng/generator_catalogue.h"
#include "tfl_rng/kernels/dsfmt19937_reference.h"
#include "tfl_rng/saved_words.h"

namespace tfl_rng {
namespace {

using State = dsfmt19937::State;

constexpr Ties kTies = kGeneratorOf<dsfmt19937>->traits.ties;
static_assert(kTies.far == dsfmt::kWords && kTies.far - kTies.near == dsfmt::kShift);

constexpr std::uint64_t kFix[2] = {0x90014964b32f4329, 0x3b8d12ac548a7c7a};
constexpr std::uint64_t kParityCheck[2] = {0x3d84e1ac0dc82880, 0x0000000000000001};

// The parity that puts the state on the cycle of full period.
bool onFullCycle(std::uint64_t const* lung) {
  const std::uint64_t bits =
      ((lung[0] ^ kFix[0]) & kParityCheck[0]) ^ ((lung[1] ^ kFix[1]) & kParityCheck[1]);
  return std::popcount(bits) % 2 == 1;
}

}  // namespace

dsfmt19937::dsfmt19937(std::uint32_t seed, bool fullPrecision) : CoreNormalRNG(fullPrecision) {
  dsfmt19937::reset(seed);
}

void dsfmt19937::reset(std::uint32_t seed) { setState(seeded(seed)); }

State dsfmt19937::seeded(std::uint32_t seed) noexcept {
  State state{};
  std::uint32_t next = seed;
  std::uint32_t i = 0;
  const auto take = [&] {
    const std::uint32_t taken = next;
    next = 1812433253u * (taken ^ (taken >> 30)) + ++i;
    return taken;
  };
  for (std::uint64_t& word : state.words) {
    const std::uint64_t low = take();
    word = (std::uint64_t{take()} << 32) | low;
  }
  for (std::size_t j = 0; j < kOutputs; ++j)
    state.words[j] = (state.words[j] & dsfmt::kMantissa) | dsfmt::kExponentOfOne;
  std::uint64_t* lung = state.words.data() + kOutputs;
  if (!onFullCycle(lung)) lung[1] ^= 1;
  state.position = kOutputs;
  return state;
}

State dsfmt19937::state() const noexcept {
  State state;
  auto* end = std::copy_n(batch_.words, kOutputs, state.words.data());
  std::copy_n(batch_.lung, 2, end);
  state.position = static_cast<std::uint32_t>(position_);
  state.reserved = reserved_;
  return state;
}

void dsfmt19937::setState(State const& state) noexcept {
  std::copy_n(state.words.data(), kOutputs, batch_.words);
  std::copy_n(state.words.data() + kOutputs, 2, batch_.lung);
  position_ = state.position;
  reserved_ = state.reserved;
}

void dsfmt19937::save(StateWord* words) const noexcept {
  State const saved = state();
  for (std::uint64_t word : saved.words) {
    *words++ = static_cast<StateWord>(word);
    *words++ = static_cast<StateWord>(word >> 32);
  }
  *words++ = saved.position;
  std::ranges::copy(saved.reserved, words);
}

bool dsfmt19937::load(StateWord const* words) noexcept {
  if (allZero(words, kStateWords)) return false;
  State loaded;
  for (std::uint64_t& word : loaded.words) {
    word = (std::uint64_t{words[1]} << 32) | words[0];
    words += 2;
  }
  loaded.position = *words++;
  std::copy_n(words, loaded.reserved.size(), loaded.reserved.begin());
  setState(loaded);
  return true;
}

void dsfmt19937::randu(double* out, std::size_t n) {
  if (n == 1 && position_ < kOutputs) {  // one value a call: nothing but its own word
    *out = dsfmt::reference::openOpen(batch_.words[position_++]);
    return;
  }
  while (n > 0) {
    if (position_ > kOutputs) position_ %= kOutputs + 1;
    const std::size_t left = kOutputs - position_;
    const std::size_t count = std::min(n, left > 0 ? left : kOutputs);
    if (left > 0) {
      dsfmt::fill(batch_, position_, out, count);
      position_ += count;
    } else {
      dsfmt::regenerateAndFill(batch_, out, count);
      position_ = count;
    }
    out += count;
    n -= count;
  }
}

// Hands out the words of the batch in order.
class dsfmt19937::NormalSource {
 public:
  using Layout = ziggurat::Bits52;

  explicit NormalSource(dsfmt19937& core) : core_(core), next_(core.position_) {
    if (next_ > kOutputs) next_ %= kOutputs + 1;
  }
  ~NormalSource() { core_.position_ = next_; }

  std::span<std::uint64_t const> atHand() const {
    return {core_.batch_.words + next_, kOutputs - next_};
  }
  void skip(std::size_t n) { next_ += n; }
  std::uint64_t value() {
    if (next_ == kOutputs) {
      dsfmt::regenerateAndFill(core_.batch_, nullptr, 0);
      next_ = 0;
    }
    return core_.batch_.words[next_++];
  }

 private:
  dsfmt19937& core_;
  std::size_t next_;
};

void dsfmt19937::randn(double* out, std::size_t n) {
  if (n == 0) return;
  NormalSource source(*this);
  ziggurat::fill(source, out, n);
}

}  // namespace tfl_rng
