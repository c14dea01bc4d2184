#include "tfl_rng/core_ziggurat.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tfl_rng/kernels/core_ziggurat.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "tfl_rng/kernels/layer_edges-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::ziggurat::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

template <class Layout>
std::size_t run(std::uint64_t const* values, double* out, std::size_t n) {
  return reference::acceptedRun(Layout{}, values, out, n);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// Two or four candidates a vector: each takes one load of its own, which more lanes do not spare.
constexpr hn::CappedTag<std::uint64_t, 4> u64;
constexpr hn::RebindToFloat<decltype(u64)> f64;
using Longs = hn::Vec<decltype(u64)>;
using Doubles = hn::Vec<decltype(f64)>;

HWY_INLINE Longs mantissa(Bits64, Longs bits) { return hn::ShiftRight<12>(bits); }
HWY_INLINE Longs mantissa(Bits52, Longs bits) {
  return hn::And(bits, hn::Set(u64, Bits52::kMagnitude));
}

template <class Layout>
HWY_INLINE std::size_t run(std::uint64_t const* values, double* out, std::size_t n) {
  const std::size_t lanes = hn::Lanes(u64);
  std::size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    const Longs bits = hn::LoadU(u64, values + i);
    const auto layerOf = [&](std::size_t lane) HWY_ATTR { return values[i + lane] & 255; };
    const auto edge = tfl_rng::HWY_NAMESPACE::layerEdges(f64, kX, layerOf);
    const Longs oneAndU = hn::Or(mantissa(Layout{}, bits), hn::Set(u64, kExponentOfOne));
    const Doubles u = hn::Sub(hn::BitCast(f64, oneAndU), hn::Set(f64, Layout::kOffset));
    const Doubles x = hn::Mul(u, edge.right);
    const Longs sign = hn::And(hn::ShiftLeft<55>(bits), hn::Set(u64, kSignBit));
    hn::StoreU(hn::Or(x, hn::BitCast(f64, sign)), f64, out + i);
    const auto rejected = hn::Ge(x, edge.left);
    if (HWY_UNLIKELY(!hn::AllFalse(f64, rejected)))
      return i + static_cast<std::size_t>(hn::FindFirstTrue(f64, rejected));
  }
  return i + reference::acceptedRun(Layout{}, values + i, out + i, n - i);
}

#endif

std::size_t run64(std::uint64_t const* values, double* out, std::size_t n) {
  return run<Bits64>(values, out, n);
}
std::size_t run52(std::uint64_t const* values, double* out, std::size_t n) {
  return run<Bits52>(values, out, n);
}

}  // namespace tfl_rng::ziggurat::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng::ziggurat {

HWY_EXPORT(run64);
HWY_EXPORT(run52);

std::size_t acceptedRun(Bits64, std::uint64_t const* values, double* out, std::size_t n) {
  return HWY_DYNAMIC_DISPATCH(run64)(values, out, n);
}
std::size_t acceptedRun(Bits52, std::uint64_t const* values, double* out, std::size_t n) {
  return HWY_DYNAMIC_DISPATCH(run52)(values, out, n);
}

}  // namespace tfl_rng::ziggurat
#endif
