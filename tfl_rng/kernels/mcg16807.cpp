#include "tfl_rng/kernels/mcg16807.h"

#include <hwy/cache_control.h>

#include <array>

#include "tfl_rng/kernels/mcg16807_reference.h"
#include "tfl_rng/kernels/streaming.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tfl_rng/kernels/mcg16807.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "tfl_rng/kernels/results-inl.h"

#ifndef TFL_RNG_KERNELS_MCG16807_TABLES
#define TFL_RNG_KERNELS_MCG16807_TABLES
namespace tfl_rng::minimal_standard {

// For fewer draws than this the scalar form is the faster one.
constexpr std::size_t kLeastDraws = 4;
constexpr std::size_t kMaxLanes = 8;
constexpr std::size_t kVectors = 32;  // of doubles made from one base word

constexpr std::uint32_t multiply(std::uint64_t a, std::uint64_t b) {
  return static_cast<std::uint32_t>(a * b % kMinimalStandardModulus);
}

constexpr std::uint32_t power(std::size_t exponent) {
  std::uint32_t result = 1;
  for (std::uint32_t square = 16807; exponent != 0;
       exponent /= 2, square = multiply(square, square))
    if (exponent % 2 != 0) result = multiply(result, square);
  return result;
}

// Entry kMaxLanes + i is the factor from the base word to the word `offset` of draw i; entries
// before lead backwards, for a last vector that reaches back over draws already made.
template <std::size_t wordsEach, std::size_t offset>
constexpr auto makeFactors() {
  std::array<std::uint64_t, kMaxLanes + kMaxLanes * kVectors> factors{};
  constexpr std::size_t period = kMinimalStandardModulus - 1;
  for (std::size_t i = 0; i < factors.size(); ++i)
    factors[i] = power(period - kMaxLanes * wordsEach + i * wordsEach + offset);
  return factors;
}

// Words are the low halves of 64-bit lanes.
template <std::size_t wordsEach, std::size_t offset>
alignas(64) constexpr auto kFactors = makeFactors<wordsEach, offset>();

}  // namespace tfl_rng::minimal_standard
#endif

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::minimal_standard::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

template <class Precision>
std::uint32_t fillFrom(std::uint32_t word, double* out, std::size_t n) {
  return reference::fill(Precision{}, word, out, n);
}

template <class Precision>
std::uint32_t fillStreaming(std::uint32_t word, double* out, std::size_t n) {
  return fillFrom<Precision>(word, out, n);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr hn::CappedTag<std::uint64_t, kMaxLanes> u64;
constexpr hn::RepartitionToNarrow<decltype(u64)> u32;
constexpr hn::RebindToFloat<decltype(u64)> f64;
using Words = hn::Vec<decltype(u64)>;
using Halves = hn::Vec<decltype(u32)>;
using Doubles = hn::Vec<decltype(f64)>;
using tfl_rng::HWY_NAMESPACE::Cached;
using tfl_rng::HWY_NAMESPACE::Streaming;

// Sums of the high and low 31 bits of products, less than twice the modulus, modulo 2^31 - 1: below
// the modulus the difference wraps around and is the larger one.
HWY_INLINE Halves reduce(Halves sum, Halves modulus) { return hn::Min(sum, hn::Sub(sum, modulus)); }

// The products a * b modulo 2^31 - 1, each of them or'ed with a constant in the high half.
HWY_INLINE Words multiplyEach(Words a, Words b, Words highHalf) {
  const Words modulus = hn::Set(u64, kMinimalStandardModulus);
  const Words product = hn::MulEven(hn::BitCast(u32, a), hn::BitCast(u32, b));
  const Words low = hn::OrAnd(highHalf, product, modulus);
  const Words sum = hn::Add(low, hn::ShiftRight<31>(product));
  return hn::BitCast(u64, reduce(hn::BitCast(u32, sum), hn::BitCast(u32, modulus)));
}

// The factors to the words at `offset` of draws i, i + 1, ...; i from -kMaxLanes on.
template <std::size_t wordsEach, std::size_t offset>
HWY_INLINE Words factorsAt(std::ptrdiff_t i) {
  return hn::LoadU(u64, kFactors<wordsEach, offset>.data() + kMaxLanes + i);
}

HWY_INLINE Doubles drawsAt(Reduced, Words base, std::ptrdiff_t i) {
  // A word is the low part of the mantissa of 2^52 + word.
  const auto exponent = hn::Set(f64, 0x1p52);
  const Words bits = multiplyEach(base, factorsAt<1, 1>(i), hn::BitCast(u64, exponent));
  const auto exact = hn::Sub(hn::BitCast(f64, bits), exponent);
  return hn::Mul(exact, hn::Set(f64, kMinimalStandardScale));
}

// Both words of a draw share a lane, the first one in the high half.
HWY_INLINE Doubles drawsAt(Full, Words base, std::ptrdiff_t i) {
  // Twice the products: their high halves are the high 31 bits.
  const Words twice = hn::Add(base, base);
  const auto doubled = [&](Words factors) HWY_ATTR {
    return hn::MulEven(hn::BitCast(u32, twice), hn::BitCast(u32, factors));
  };
  const auto join = [](Words high, Words low) HWY_ATTR {
    return hn::OddEven(hn::BitCast(u32, high), hn::BitCast(u32, low));
  };
  const Words first = doubled(factorsAt<2, 1>(i));
  const Words second = doubled(factorsAt<2, 2>(i));
  const Halves high31 = join(first, hn::ShiftRight<32>(second));
  const Halves low31 = hn::ShiftRight<1>(join(hn::ShiftLeft<32>(first), second));
  // A word less 1: no sum is 0 or the modulus.
  const Halves sum = hn::Add(high31, hn::Sub(low31, hn::Set(u32, 1)));
  const Halves top26 = hn::ShiftRight<5>(reduce(sum, hn::Set(u32, kMinimalStandardModulus)));
  const Words apart = hn::BitCast(u64, top26);
  // Joined, the bits are the mantissa of a number of [1,2).
  const Words low26 = hn::Set(u64, 0x3ffffff);
  const Words exponent = hn::BitCast(u64, hn::Set(f64, 1.0));
  const Words bits =
      hn::Or(hn::OrAnd(exponent, apart, low26), hn::AndNot(low26, hn::ShiftRight<6>(apart)));
  return hn::Sub(hn::BitCast(f64, bits), hn::Set(f64, 1 - 0x1p-53));
}

// With streaming results `out` must begin with a cache line.
template <class Precision, class Results = Cached>
HWY_INLINE std::uint32_t fillFrom(std::uint32_t word, double* out, std::size_t n) {
  const std::size_t lanes = hn::Lanes(u64);
  if (n < lanes) return reference::fill(Precision{}, word, out, n);
  const auto store = [&](Words base, std::ptrdiff_t i, double* to)
                         HWY_ATTR { hn::StoreU(drawsAt(Precision{}, base, i), f64, to); };
  const auto step = static_cast<std::ptrdiff_t>(lanes);
  const auto block = static_cast<std::ptrdiff_t>(lanes * kVectors);
  constexpr auto const& lastFactors = kFactors<Precision::kStepsEach, Precision::kStepsEach>;
  auto left = static_cast<std::ptrdiff_t>(n);
  Words base = hn::Set(u64, word);
  const Words blockFactor = hn::Set(u64, lastFactors[kMaxLanes - 1 + lanes * kVectors]);
  for (; left >= block; left -= block, out += block) {
    for (std::ptrdiff_t i = 0; i < block; i += step)
      Results::store(drawsAt(Precision{}, base, i), f64, out + i);
    base = multiplyEach(base, blockFactor, hn::Zero(u64));
  }
  std::ptrdiff_t i = 0;
  for (; i + step <= left; i += step) store(base, i, out + i);
  // The last vector ends where the request ends and repeats what it shares with the one before.
  if (i < left) store(base, left - step, out + (left - step));
  return multiply(hn::GetLane(base), lastFactors[kMaxLanes - 1 + static_cast<std::size_t>(left)]);
}

template <class Precision>
HWY_INLINE std::uint32_t fillStreaming(std::uint32_t word, double* out, std::size_t n) {
  const std::size_t head = streaming::beforeFirstLine(out, n);
  word = fillFrom<Precision>(word, out, head);
  word = fillFrom<Precision, Streaming>(word, out + head, n - head);
  hwy::FlushStream();
  return word;
}

#endif

template <class Precision>
std::uint32_t fillTo(Stores stores, std::uint32_t word, double* out, std::size_t n) {
  return stores == Stores::cached ? fillFrom<Precision>(word, out, n)
                                  : fillStreaming<Precision>(word, out, n);
}

std::uint32_t fillAny(Form form, Stores stores, std::uint32_t word, double* out, std::size_t n) {
  return form == Form::full ? fillTo<Full>(stores, word, out, n)
                            : fillTo<Reduced>(stores, word, out, n);
}

}  // namespace tfl_rng::minimal_standard::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng::minimal_standard {

HWY_EXPORT(fillAny);

std::uint32_t fill(Form form, Stores stores, std::uint32_t word, double* out, std::size_t n) {
  if (n >= kLeastDraws) return HWY_DYNAMIC_DISPATCH(fillAny)(form, stores, word, out, n);
  return form == Form::full ? reference::fill(Full{}, word, out, n)
                            : reference::fill(Reduced{}, word, out, n);
}

}  // namespace tfl_rng::minimal_standard
#endif
