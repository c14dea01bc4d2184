#include "rng/kernels/accepted_run.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rng/kernels/accepted_run.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "tfl_rng/kernels/layer_edges-inl.h"

HWY_BEFORE_NAMESPACE();
namespace ziggurat::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

std::size_t run(double const* uniforms, std::size_t most, double* out) {
  return reference::acceptedRun(uniforms, most, out);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// Two or four candidates a vector: each takes one load of its own, which more lanes do not spare.
constexpr hn::CappedTag<double, 4> f64;
constexpr hn::Rebind<std::int32_t, decltype(f64)> i32;
using Doubles = hn::Vec<decltype(f64)>;
constexpr std::size_t kLanes = hn::MaxLanes(f64);

std::size_t run(double const* uniforms, std::size_t most, double* out) {
  HWY_ALIGN std::int32_t layers[kLanes];
  const auto layerOf = [&](std::size_t lane) HWY_ATTR { return layers[lane]; };
  std::size_t i = 0;
  for (; i + kLanes <= most; i += kLanes) {
    const Doubles a = hn::LoadU(f64, uniforms + 2 * i);
    const Doubles b = hn::LoadU(f64, uniforms + 2 * i + kLanes);
    const Doubles u0 = hn::ConcatEven(f64, b, a);
    const Doubles u1 = hn::ConcatOdd(f64, b, a);
    hn::Store(hn::DemoteTo(i32, hn::Mul(u0, hn::Set(f64, kLayers))), i32, layers);
    const auto edge = tfl_rng::HWY_NAMESPACE::layerEdges(f64, kX.data(), layerOf);
    const Doubles place = hn::Sub(hn::Add(u1, u1), hn::Set(f64, 1));
    const Doubles x = hn::Mul(place, edge.right);
    const auto outside = hn::Not(hn::Le(hn::Abs(x), edge.left));
    if (HWY_UNLIKELY(!hn::AllFalse(f64, outside))) {
      // The uniforms of the others are still to be read: what follows may lie over them.
      const auto inside = static_cast<std::size_t>(hn::FindFirstTrue(f64, outside));
      hn::BlendedStore(x, hn::FirstN(f64, inside), f64, out + i);
      return i + inside;
    }
    hn::StoreU(x, f64, out + i);
  }
  return i + reference::acceptedRun(uniforms + 2 * i, most - i, out + i);
}

#endif

}  // namespace ziggurat::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ziggurat {

HWY_EXPORT(run);

std::size_t acceptedRun(double const* uniforms, std::size_t most, double* out) {
  return HWY_DYNAMIC_DISPATCH(run)(uniforms, most, out);
}

}  // namespace ziggurat
#endif
