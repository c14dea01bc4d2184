// The vector form of open52 (to_double.h). Included once for each instruction set.

#if defined(TFL_RNG_KERNELS_OPEN52_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TFL_RNG_KERNELS_OPEN52_INL_H_
#undef TFL_RNG_KERNELS_OPEN52_INL_H_
#else
#define TFL_RNG_KERNELS_OPEN52_INL_H_
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::HWY_NAMESPACE {

// The top 52 bits b of each word: (b + 0.5) * 2^-52. Behind the exponent of [1,2) they make
// 1 + b * 2^-52, from which the subtraction is exact.
template <class Words>
HWY_INLINE auto open52(Words words) {
  namespace hn = hwy::HWY_NAMESPACE;
  const hn::DFromV<Words> u64;
  const hn::RebindToFloat<decltype(u64)> f64;
  const auto bits = hn::Or(hn::ShiftRight<12>(words), hn::Set(u64, 0x3FF0000000000000));
  return hn::Sub(hn::BitCast(f64, bits), hn::Set(f64, 1 - 0x1p-53));
}

}  // namespace tfl_rng::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
