#include "tfl_rng/normal_quantile.h"

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

  // Replaces the uniforms at the kept places of `values` by their quantiles.
  HWY_INLINE void finish(double* values) {
    double u[kBlock + kMostLanes];
    for (std::size_t j = 0; j < count_; ++j) u[j] = values[places_[j]];
    std::fill_n(u + count_, kMostLanes, 0.01);
    for (std::size_t j = 0; j < count_; j += hn::Lanes(f64)) tailInPlace(u + j);
    for (std::size_t j = 0; j < count_; ++j) values[places_[j]] = u[j];
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

// n is a multiple of the lanes and at most kBlock.
HWY_INLINE void block(double* values, std::size_t n, Tails& tails) {
  for (std::size_t i = 0; i < n; i += hn::Lanes(f64)) {
    const Doubles u = hn::LoadU(f64, values + i);
    const Doubles q = hn::Sub(u, hn::Set(f64, 0.5));
    const auto inTail = hn::Gt(hn::Abs(q), hn::Set(f64, kCentralHalfWidth));
    tails.keep(inTail, i);
    const Doubles r = hn::Sub(hn::Set(f64, kCentralShift), hn::Mul(q, q));
    const Doubles numerator = hn::Mul(q, polynomial(kCentral.numerator, r));
    const Doubles central = hn::Div(numerator, polynomial(kCentral.denominator, r));
    hn::StoreU(hn::IfThenElse(inTail, u, central), f64, values + i);
  }
  tails.finish(values);
}

void inPlace(double* values, std::size_t n) {
  Tails tails;
  const std::size_t rest = n % hn::Lanes(f64);
  for (std::size_t done = 0; done < n - rest; done += kBlock)
    block(values + done, std::min(kBlock, n - rest - done), tails);
  if (rest == 0) return;
  double last[kMostLanes];
  std::fill_n(last, kMostLanes, 0.5);
  std::copy_n(values + n - rest, rest, last);
  block(last, hn::Lanes(f64), tails);
  std::copy_n(last, rest, values + n - rest);
}

#endif

}  // namespace tfl_rng::quantile::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng {
namespace quantile {
HWY_EXPORT(inPlace);
}

void normalQuantileInPlace(double* values, std::size_t n) noexcept {
  using namespace quantile;
  if (n == 1) return static_cast<void>(*values = normalQuantile(*values));  // the quicker way
  HWY_DYNAMIC_DISPATCH(inPlace)(values, n);
}

}  // namespace tfl_rng
#endif
