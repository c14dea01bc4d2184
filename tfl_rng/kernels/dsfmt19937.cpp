#include "tfl_rng/kernels/dsfmt19937.h"

#include <algorithm>

#include "tfl_rng/kernels/dsfmt19937_reference.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tfl_rng/kernels/dsfmt19937.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::dsfmt::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

void fillWords(std::uint64_t const* words, double* out, std::size_t n) {
  reference::fill(words, out, n);
}

void regenerateAndFillWords(Batch& batch, double* out, std::size_t n) {
  reference::regenerate(batch);
  fillWords(batch.words, out, n);
}

#else

// The lung makes the recurrence serial: with R the reversal of the four 32-bit words of a pair, it
// goes L(i) = c(i) ^ R L(i-1), where c(i) depends on the table alone. Two steps at once, from the
// carry R L(-1), R being its own inverse:
//   L(0) = c(0) ^ carry,  R L(1) = R c(1) ^ c(0) ^ carry = the next carry,
// so that only one exclusive-or lies between a carry and the next.

namespace hn = hwy::HWY_NAMESPACE;

// One pair a vector, or two; more would only lengthen the way from c to the carry.
constexpr hn::CappedTag<std::uint64_t, 4> u64;
constexpr hn::RepartitionToNarrow<decltype(u64)> u32;
constexpr hn::RebindToFloat<decltype(u64)> f64;
using Longs = hn::Vec<decltype(u64)>;

HWY_INLINE Longs reversePairs(Longs v) {
  return hn::BitCast(u64, hn::Shuffle0123(hn::BitCast(u32, v)));
}

// The lung of every pair of a vector from its c; `carry`, in every pair, moves on to the next
// vector.
HWY_INLINE Longs turnLung(Longs c, Longs& carry) {
  if (hn::Lanes(u64) == 2) {
    const Longs lung = hn::Xor(c, carry);
    carry = reversePairs(lung);
    return lung;
  }
  const Longs upperReversed = hn::ConcatUpperLower(u64, reversePairs(c), c);
  const Longs swapped = hn::ConcatLowerUpper(u64, upperReversed, upperReversed);
  const Longs first = hn::Xor(c, carry);
  carry = hn::Xor3(carry, upperReversed, swapped);
  return hn::ConcatUpperLower(u64, reversePairs(carry), first);
}

struct Regeneration {
  std::uint64_t* words;
  Longs carry;
  Longs lung;  // of the last vector
};

// The words of the next batch at i, a multiple of the lanes, stored in place of the old ones; the
// second pair of the recurrence stands at i + shift.
HWY_INLINE Longs regenerateAt(std::size_t i, std::ptrdiff_t shift, Regeneration& state) {
  std::uint64_t* w = state.words + i;
  const Longs old = hn::Load(u64, w);
  const Longs c = hn::Xor(hn::ShiftLeft<19>(old), hn::LoadU(u64, w + shift));
  state.lung = turnLung(c, state.carry);
  const Longs masked = hn::And(state.lung, hn::LoadDup128(u64, kMask));
  const Longs next = hn::Xor(hn::Xor(old, hn::ShiftRight<12>(state.lung)), masked);
  hn::Store(next, u64, w);
  return next;
}

HWY_INLINE void store(Longs words, double* out) {
  const Longs mantissa = hn::And(words, hn::Set(u64, kMantissa));
  const Longs bits = hn::Or(mantissa, hn::Set(u64, kExponentOfOne | 1));
  hn::StoreU(hn::Sub(hn::BitCast(f64, bits), hn::Set(f64, 1.0)), f64, out);
}

// Completes out[0, n) when whole vectors are done. The last vector ends where the request ends and
// repeats what it shares with the one before.
HWY_INLINE void finish(std::uint64_t const* words, double* out, std::size_t n) {
  const std::size_t lanes = hn::Lanes(u64);
  if (n < lanes) return reference::fill(words, out, n);
  store(hn::LoadU(u64, words + n - lanes), out + n - lanes);
}

void fillWords(std::uint64_t const* words, double* out, std::size_t n) {
  const std::size_t lanes = hn::Lanes(u64);
  for (std::size_t i = 0; i + lanes <= n; i += lanes) store(hn::LoadU(u64, words + i), out + i);
  if (n % lanes != 0) finish(words, out, n);
}

void regenerateAndFillWords(Batch& batch, double* out, std::size_t n) {
  const std::size_t lanes = hn::Lanes(u64);
  const Longs carry = reversePairs(hn::LoadDup128(u64, batch.lung));
  Regeneration state{batch.words, carry, carry};
  const std::size_t delivered = n / lanes * lanes;
  const auto regenerateUpTo = [&](std::size_t i, std::size_t end, std::ptrdiff_t shift) HWY_ATTR {
    for (; i < std::min(delivered, end); i += lanes) store(regenerateAt(i, shift, state), out + i);
    for (; i < end; i += lanes) regenerateAt(i, shift, state);
  };
  constexpr std::ptrdiff_t shift = kShift;
  regenerateUpTo(0, kWords - kShift, shift);
  regenerateUpTo(kWords - kShift, kWords, shift - static_cast<std::ptrdiff_t>(kWords));
  // The number of pairs is odd: the last one is the lower of its vector, nobody reads the upper.
  alignas(32) std::uint64_t lung[4];
  hn::Store(state.lung, u64, lung);
  batch.lung[0] = lung[0];
  batch.lung[1] = lung[1];
  if (n % lanes != 0) finish(batch.words, out, n);
}

#endif

}  // namespace tfl_rng::dsfmt::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng::dsfmt {

HWY_EXPORT(fillWords);
HWY_EXPORT(regenerateAndFillWords);

void fill(Batch const& batch, std::size_t position, double* out, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(fillWords)(batch.words + position, out, n);
}
void regenerateAndFill(Batch& batch, double* out, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(regenerateAndFillWords)(batch, out, n);
}

}  // namespace tfl_rng::dsfmt
#endif
