#include "tfl_rng/mt19937ar.h"

#include <algorithm>

#include "tfl_rng/core_ziggurat.h"
#include "tfl_rng/generator_catalogue.h"
#include "tfl_rng/kernels/mt19937_reference.h"
#include "tfl_rng/saved_words.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng {
namespace {

constexpr std::uint32_t kDefaultSeed = 5489;

constexpr Ties kTies = kGeneratorOf<mt19937ar>->traits.ties;
static_assert(kTies.far == mt19937ar::kWords && kTies.far - kTies.near == mt19937::kShift);

}  // namespace

mt19937ar::mt19937ar(std::uint32_t seed, bool fullPrecision) : CoreNormalRNG(fullPrecision) {
  mt19937ar::reset(seed);
}

void mt19937ar::reset(std::uint32_t seed) { setState(seeded(seed == 0 ? kDefaultSeed : seed)); }

mt19937ar::State mt19937ar::seeded(std::uint32_t seed) noexcept {
  State state;
  state.words[0] = seed;
  for (std::uint32_t i = 1; i < kWords; ++i) {
    const std::uint32_t last = state.words[i - 1];
    state.words[i] = 1812433253u * (last ^ (last >> 30)) + i;
  }
  state.position = kWords;
  return state;
}

mt19937ar::State mt19937ar::state() const noexcept {
  State state;
  std::copy_n(batch_.words, kWords, state.words.begin());
  state.position = static_cast<std::uint32_t>(position_);
  return state;
}

void mt19937ar::setState(State const& state) noexcept {
  std::copy(state.words.begin(), state.words.end(), batch_.words);
  position_ = state.position;
}

void mt19937ar::save(StateWord* words) const noexcept {
  std::copy_n(batch_.words, kWords, words);
  words[kWords] = static_cast<StateWord>(position_);
}

bool mt19937ar::load(StateWord const* words) noexcept {
  if (allZero(words, kWords) || words[kWords] > kWords) return false;
  std::copy_n(words, kWords, batch_.words);
  position_ = words[kWords];
  return true;
}

void mt19937ar::randu(double* out, std::size_t n) {
  if (fullPrecision())
    fill(Full{}, out, n);
  else
    fill(Reduced{}, out, n);
}

template <class Precision>
void mt19937ar::fill(Precision precision, double* out, std::size_t n) {
  constexpr std::size_t each = Precision::kStepsEach;
  if (n == 1 && position_ <= kWords - each) {  // one value a call: nothing but its own words
    *out = mt19937::reference::convert(precision, batch_.words + position_);
    position_ += each;
    return;
  }
  while (n > 0) {
    std::size_t count = std::min(n, (kWords - position_) / each);
    if (count > 0) {
      mt19937::fill(precision, batch_, position_, out, count);
    } else if (position_ == kWords) {
      count = std::min(n, kWords / each);
      mt19937::regenerateAndFill(precision, batch_, out, count);
      position_ = 0;
    } else {
      // One word is left of this batch: the double takes its second one from the next.
      const std::uint32_t high = nextWord();
      *out++ = res53(high, nextWord());
      --n;
      continue;
    }
    position_ += count * each;
    out += count;
    n -= count;
  }
}

void mt19937ar::regenerate() {
  mt19937::regenerateAndFill(Reduced{}, batch_, nullptr, 0);
  position_ = 0;
}

std::uint32_t mt19937ar::nextWord() {
  if (position_ == kWords) regenerate();
  return mt19937::reference::temper(batch_.words[position_++]);
}

// Hands out the 64-bit values of the batch in order, tempered as many at a time as are wanted.
class mt19937ar::NormalSource {
 public:
  using Layout = ziggurat::Bits64;

  // Serves at least `expected` values.
  NormalSource(mt19937ar& core, std::size_t expected) : core_(core), expected_(expected) {}
  // Values tempered ahead and not used go back.
  ~NormalSource() { core_.position_ -= 2 * (end_ - next_); }

  std::span<std::uint64_t const> atHand() const { return {values_ + next_, end_ - next_}; }
  void skip(std::size_t n) { next_ += n; }
  std::uint64_t value() {
    if (next_ == end_) refill();
    return values_[next_++];
  }

 private:
  void refill() {
    next_ = 0;
    // A value that takes its halves from two batches, or that is wanted alone.
    if (kWords - core_.position_ == 1 || expected_ == 1) {
      const std::uint64_t low = core_.nextWord();
      values_[0] = (std::uint64_t{core_.nextWord()} << 32) | low;
      end_ = 1;
      return;
    }
    if (core_.position_ == kWords) core_.regenerate();
    end_ = std::min(expected_, (kWords - core_.position_) / 2);
    mt19937::temper(core_.batch_, core_.position_, values_, end_);
    core_.position_ += 2 * end_;
  }

  mt19937ar& core_;
  std::size_t expected_;
  std::size_t next_ = 0;
  std::size_t end_ = 0;
  std::uint64_t values_[kWords / 2];
};

void mt19937ar::randn(double* out, std::size_t n) {
  NormalSource source(*this, n);
  ziggurat::fill(source, out, n);
}

}  // namespace tfl_rng
