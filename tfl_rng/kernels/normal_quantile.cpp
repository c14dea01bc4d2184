#include "tfl_rng/normal_quantile.h"
#include "tfl_rng/float_environment.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "tfl_rng/kernels/lanes_of.h"
#include "tfl_rng/normal_quantile_coefficients.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tfl_rng/kernels/normal_quantile.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "tfl_rng/kernels/elementary-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::quantile::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

void inPlace(double* values, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) values[i] = normalQuantile(values[i]);
}

#else

// Every value goes through the central form; the 15% in the tails are collected, done as full
// vectors and put back.

namespace hn = hwy::HWY_NAMESPACE;
using elementary::HWY_NAMESPACE::Doubles;
using elementary::HWY_NAMESPACE::f64;

constexpr std::size_t kMostLanes = 8;
constexpr std::size_t kBlock = 256;  // values between two rounds of tails; a place fits a byte

// Horner's rule from the highest coefficient, written out so that it becomes straight code.
HWY_INLINE Doubles polynomial(double const (&c)[8], Doubles x) {
  const auto next = [x](Doubles sum, double coefficient)
                        HWY_ATTR { return hn::Add(hn::Mul(sum, x), hn::Set(f64, coefficient)); };
  const Doubles upper = next(next(next(hn::Set(f64, c[7]), c[6]), c[5]), c[4]);
  return next(next(next(next(upper, c[3]), c[2]), c[1]), c[0]);
}

// The places of the tail values of a block.
class Tails {
 public:
  // Keeps the places from `at` on whose lanes are set. Branches on them would be mispredicted; a
  // table turns the mask into the list of its lanes.
  HWY_INLINE void keep(hn::Mask<decltype(f64)> mask, std::size_t at) {
    std::uint8_t bits = 0;
    hn::StoreMaskBits(f64, mask, &bits);
    const std::uint64_t places = kernels::kLanesOf[bits] + at * 0x0101010101010101;
    std::memcpy(places_ + count_, &places, sizeof places);
    count_ += static_cast<std::size_t>(std::popcount(bits));
  }

  // Replaces the uniforms at the kept places of `values` by their quantiles: whole vectors, the
  // last one filled up with the last place, since a loop of as many rounds as there are tail values
  // would be mispredicted nearly always.
  HWY_INLINE void finish(double* values) {
    constexpr std::size_t lanes = hn::MaxLanes(f64);
    if (count_ == 0) return;
    std::fill_n(places_ + count_, lanes, places_[count_ - 1]);
    for (std::size_t j = 0; j < count_; j += lanes) {
      double u[lanes];
      HWY_UNROLL(8)
      for (std::size_t lane = 0; lane < lanes; ++lane) u[lane] = values[places_[j + lane]];
      tailInPlace(u);
      HWY_UNROLL(8)
      for (std::size_t lane = 0; lane < lanes; ++lane) values[places_[j + lane]] = u[lane];
    }
    count_ = 0;
  }

 private:
  static HWY_INLINE void tailInPlace(double* values) {
    const Doubles u = hn::LoadU(f64, values);
    const Doubles q = hn::Sub(u, hn::Set(f64, 0.5));
    const Doubles smaller = hn::Min(u, hn::Sub(hn::Set(f64, 1), u));
    const Doubles r = hn::Sqrt(hn::Neg(elementary::HWY_NAMESPACE::log(smaller)));
    // One value in 10^10 lies farther out than the intermediate form reaches.
    if (HWY_UNLIKELY(!hn::AllTrue(f64, hn::Le(r, hn::Set(f64, kFarTail))))) {
      for (std::size_t j = 0; j < hn::Lanes(f64); ++j) values[j] = normalQuantile(values[j]);
      return;
    }
    const Doubles x = hn::Sub(r, hn::Set(f64, kIntermediate.shift));
    const Doubles magnitude =
        hn::Div(polynomial(kIntermediate.numerator, x), polynomial(kIntermediate.denominator, x));
    hn::StoreU(hn::CopySign(magnitude, q), f64, values);
  }

  std::size_t count_ = 0;
  std::uint8_t places_[kBlock + kMostLanes];
};

// A vector of values by the central form; those of the tails stay, and their places from `at` on
// are kept.
HWY_INLINE void central(double* values, std::size_t at, Tails& tails) {
  const Doubles u = hn::LoadU(f64, values);
  const Doubles q = hn::Sub(u, hn::Set(f64, 0.5));
  const auto inTail = hn::Gt(hn::Abs(q), hn::Set(f64, kCentralHalfWidth));
  tails.keep(inTail, at);
  const Doubles r = hn::Sub(hn::Set(f64, kCentralShift), hn::Mul(q, q));
  const Doubles numerator = hn::Mul(q, polynomial(kCentral.numerator, r));
  const Doubles quantile = hn::Div(numerator, polynomial(kCentral.denominator, r));
  hn::StoreU(hn::IfThenElse(inTail, u, quantile), f64, values);
}

// n is at most kBlock.
HWY_INLINE void block(double* values, std::size_t n, Tails& tails) {
  const std::size_t lanes = hn::Lanes(f64);
  std::size_t i = 0;
  for (; i + lanes <= n; i += lanes) central(values + i, i, tails);
  if (i < n) {
    double last[kMostLanes];
    std::fill_n(last, kMostLanes, 0.5);
    std::copy_n(values + i, n - i, last);
    central(last, i, tails);
    std::copy_n(last, n - i, values + i);
  }
  tails.finish(values);
}

void inPlace(double* values, std::size_t n) {
  Tails tails;
  for (std::size_t done = 0; done < n; done += kBlock)
    block(values + done, std::min(kBlock, n - done), tails);
}

#endif

}  // namespace tfl_rng::quantile::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng {
namespace quantile {
HWY_EXPORT(inPlace);

// For fewer values than this the scalar form is the faster one.
constexpr std::size_t kLeastValues = 5;
}  // namespace quantile

void normalQuantileInPlace(double* values, std::size_t n) noexcept {
  const FloatEnvironment environment;
  using namespace quantile;
  if (n < kLeastValues) {
    for (std::size_t i = 0; i < n; ++i) values[i] = normalQuantile(values[i]);
  } else {
    HWY_DYNAMIC_DISPATCH(inPlace)(values, n);
  }
}

}  // namespace tfl_rng
#endif
