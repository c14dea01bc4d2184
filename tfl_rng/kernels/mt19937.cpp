#include "tfl_rng/kernels/mt19937.h"

#include "tfl_rng/kernels/mt19937_reference.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tfl_rng/kernels/mt19937.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::mt19937::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

template <class Precision>
void fillWords(std::uint32_t const* words, double* out, std::size_t n) {
  reference::fill(Precision{}, words, out, n);
}

template <class Precision>
void regenerateAndFillWords(std::uint32_t* words, double* out, std::size_t n) {
  reference::regenerate(words);
  fillWords<Precision>(words, out, n);
}

void temperWords(std::uint32_t const* words, std::uint64_t* values, std::size_t n) {
  reference::temper(words, values, n);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// At most kRoom lanes; a power of two, so that it divides kWords = 39 * 16.
constexpr hn::CappedTag<std::uint32_t, kRoom> u32;
constexpr hn::RepartitionToWide<decltype(u32)> u64;
constexpr hn::RebindToFloat<decltype(u64)> f64;
using Words = hn::Vec<decltype(u32)>;
using Longs = hn::Vec<decltype(u64)>;

HWY_INLINE Words twist(Words u, Words v) {
  const Words upper = hn::Set(u32, kUpperMask);
  const Words joined = hn::Or(hn::And(upper, u), hn::AndNot(upper, v));
  const Words half = hn::ShiftRight<1>(joined);
  const auto odd = hn::TestBit(joined, hn::Set(u32, 1));
  return hn::IfThenElse(odd, hn::Xor(half, hn::Set(u32, kMatrix)), half);
}

HWY_INLINE Words temper(Words y) {
  y = hn::Xor(y, hn::ShiftRight<11>(y));
  y = hn::Xor(y, hn::And(hn::ShiftLeft<7>(y), hn::Set(u32, kTemperB)));
  y = hn::Xor(y, hn::And(hn::ShiftLeft<15>(y), hn::Set(u32, kTemperC)));
  return hn::Xor(y, hn::ShiftRight<18>(y));
}

// The words of the next batch at i, a multiple of the lanes, stored in place of the old ones. New
// words lie below i, old ones from i on; behind the end lies a copy of the first new ones, where
// the vectors at 608 and 224 reach across it.
HWY_INLINE Words regenerateAt(std::uint32_t* w, std::size_t i) {
  const std::size_t other = i < kWords - kShift ? i + kShift : i + kShift - kWords;
  const Words next =
      hn::Xor(hn::LoadU(u32, w + other), twist(hn::Load(u32, w + i), hn::LoadU(u32, w + i + 1)));
  hn::Store(next, u32, w + i);
  if (i < kRoom) hn::Store(next, u32, w + kWords + i);
  return next;
}

// Pairs of words, the first one being the low half of a 64-bit lane: 27 and 26 bits of them.
HWY_INLINE void store(Full, Words tempered, double* out) {
  const Longs pair = hn::BitCast(u64, tempered);
  const Longs k = hn::Or(hn::And(hn::ShiftLeft<21>(pair), hn::Set(u64, 0x001ffffffc000000)),
                         hn::ShiftRight<38>(pair));
  const auto u = hn::Mul(hn::ConvertTo(f64, hn::BitCast(hn::RebindToSigned<decltype(u64)>(), k)),
                         hn::Set(f64, 0x1p-53));
  hn::StoreU(hn::Max(u, hn::Set(f64, kSmallestUniform)), f64, out);
}

// A word as the top bits behind the exponent of [1,2).
HWY_INLINE void store(Reduced, Words tempered, double* out) {
  const hn::Half<decltype(u32)> half;
  const auto one = hn::Set(u64, 0x3ff0000000000000);
  const auto offset = hn::Set(f64, 1 - 0x1p-33);
  const auto convert = [&](auto words) HWY_ATTR {
    const Longs mantissa = hn::ShiftLeft<20>(hn::PromoteTo(u64, words));
    return hn::Sub(hn::BitCast(f64, hn::Or(mantissa, one)), offset);
  };
  hn::StoreU(convert(hn::LowerHalf(half, tempered)), f64, out);
  hn::StoreU(convert(hn::UpperHalf(half, tempered)), f64, out + hn::Lanes(f64));
}

// The doubles of a vector of words.
template <class Precision>
HWY_INLINE std::size_t doublesEach() {
  return hn::Lanes(u32) / Precision::kStepsEach;
}

template <class Precision>
HWY_INLINE void storeAt(std::uint32_t const* words, std::size_t i, double* out) {
  store(Precision{}, temper(hn::LoadU(u32, words + i * Precision::kStepsEach)), out + i);
}

// Completes out[0, n) when whole vectors are done. The last vector ends where the request ends and
// repeats what it shares with the one before.
template <class Precision>
HWY_INLINE void finish(std::uint32_t const* words, double* out, std::size_t n) {
  const std::size_t step = doublesEach<Precision>();
  if (n < step) return reference::fill(Precision{}, words, out, n);
  storeAt<Precision>(words, n - step, out);
}

template <class Precision>
HWY_INLINE void fillWords(std::uint32_t const* words, double* out, std::size_t n) {
  const std::size_t step = doublesEach<Precision>();
  for (std::size_t i = 0; i + step <= n; i += step) storeAt<Precision>(words, i, out);
  if (n % step != 0) finish<Precision>(words, out, n);
}

template <class Precision>
HWY_INLINE void regenerateAndFillWords(std::uint32_t* words, double* out, std::size_t n) {
  const std::size_t lanes = hn::Lanes(u32);
  const std::size_t step = doublesEach<Precision>();
  std::size_t i = 0;
  std::size_t done = 0;
  for (; done + step <= n; i += lanes, done += step)
    store(Precision{}, temper(regenerateAt(words, i)), out + done);
  for (; i < kWords; i += lanes) regenerateAt(words, i);
  if (done < n) finish<Precision>(words, out, n);
}

void temperWords(std::uint32_t const* words, std::uint64_t* values, std::size_t n) {
  const std::size_t step = hn::Lanes(u64);
  std::size_t i = 0;
  for (; i + step <= n; i += step)
    hn::StoreU(hn::BitCast(u64, temper(hn::LoadU(u32, words + 2 * i))), u64, values + i);
  reference::temper(words + 2 * i, values + i, n - i);
}

#endif

void fillFull(std::uint32_t const* words, double* out, std::size_t n) {
  fillWords<Full>(words, out, n);
}
void fillReduced(std::uint32_t const* words, double* out, std::size_t n) {
  fillWords<Reduced>(words, out, n);
}
void regenerateAndFillFull(std::uint32_t* words, double* out, std::size_t n) {
  regenerateAndFillWords<Full>(words, out, n);
}
void regenerateAndFillReduced(std::uint32_t* words, double* out, std::size_t n) {
  regenerateAndFillWords<Reduced>(words, out, n);
}

}  // namespace tfl_rng::mt19937::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng::mt19937 {

HWY_EXPORT(fillFull);
HWY_EXPORT(fillReduced);
HWY_EXPORT(regenerateAndFillFull);
HWY_EXPORT(regenerateAndFillReduced);
HWY_EXPORT(temperWords);

void fill(Full, Batch const& batch, std::size_t position, double* out, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(fillFull)(batch.words + position, out, n);
}
void fill(Reduced, Batch const& batch, std::size_t position, double* out, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(fillReduced)(batch.words + position, out, n);
}
void regenerateAndFill(Full, Batch& batch, double* out, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(regenerateAndFillFull)(batch.words, out, n);
}
void regenerateAndFill(Reduced, Batch& batch, double* out, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(regenerateAndFillReduced)(batch.words, out, n);
}

void temper(Batch const& batch, std::size_t position, std::uint64_t* values, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(temperWords)(batch.words + position, values, n);
}

}  // namespace tfl_rng::mt19937
#endif
