#include "rng/kernels/ziggurat.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rng/kernels/ziggurat.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "tfl_rng/kernels/layer_edges-inl.h"

HWY_BEFORE_NAMESPACE();
namespace ziggurat::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

std::size_t make(Run& run, double const* uniforms, std::size_t n) {
  return reference::normals(run, uniforms, n);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// Two or four candidates a vector: each takes one load of its own, which more lanes do not spare.
constexpr hn::CappedTag<double, 4> f64;
constexpr hn::Rebind<std::int32_t, decltype(f64)> i32;
using Doubles = hn::Vec<decltype(f64)>;
constexpr std::size_t kLanes = hn::MaxLanes(f64);
constexpr std::size_t kNeeded = 2 * kLanes + 1;  // uniforms of a vector and a wedge
static_assert(2 * kLanes <= kMostUniformsLeft && kLanes - 1 <= kMostNormalsLeft);

// The only branches on what is drawn: whether all candidates of a vector are inside, and the tail.
// A candidate in a wedge is stored, and the next normal goes over it when it is not accepted.
std::size_t make(Run& shared, double const* uniforms, std::size_t n) {
  Run run = shared;
  HWY_ALIGN std::int32_t layers[kLanes];
  const auto layerOf = [&](std::size_t lane) HWY_ATTR { return layers[lane]; };
  // Stores a vector of candidates and tells which are outside.
  const auto tryVector = [&](double const* from, double* to) HWY_ATTR {
    const Doubles a = hn::LoadU(f64, from);
    const Doubles b = hn::LoadU(f64, from + kLanes);
    const Doubles u0 = hn::ConcatEven(f64, b, a);
    const Doubles u1 = hn::ConcatOdd(f64, b, a);
    hn::Store(hn::DemoteTo(i32, hn::Mul(u0, hn::Set(f64, kLayers))), i32, layers);
    const auto edge = tfl_rng::HWY_NAMESPACE::layerEdges(f64, kX.data(), layerOf);
    const Doubles place = hn::Sub(hn::Add(u1, u1), hn::Set(f64, 1));
    const Doubles x = hn::Mul(place, edge.right);
    hn::StoreU(x, f64, to);
    return hn::Gt(hn::Abs(x), edge.left);
  };
  std::size_t at = 0;
  // Books attempts that all made their normals.
  const auto made = [&](std::size_t count) {
    run.planPairs(count);
    run.planned -= 2 * count;
    run.out += count;
    at += 2 * count;
  };
  for (;;) {
    if (run.out == run.chunkEnd) at += run.endChunk();
    if (at + kNeeded > n || run.end - run.out < std::ptrdiff_t{kLanes}) break;
    const std::size_t vectors =
        std::min(run.missing() / kLanes, (n - at - kNeeded) / (2 * kLanes) + 1);
    std::size_t i = 0;
    auto outside = hn::FirstN(f64, 0);
    while (i < vectors) {
      outside = tryVector(uniforms + at + 2 * kLanes * i, run.out + kLanes * i);
      if (HWY_UNLIKELY(!hn::AllFalse(f64, outside))) break;
      ++i;
    }
    made(kLanes * i);
    if (i == vectors) {
      if (run.missing() == 0 || run.missing() >= kLanes || at + kNeeded > n) continue;
      if (run.end - run.out < std::ptrdiff_t{kLanes}) break;
      outside = tryVector(uniforms + at, run.out);
    }
    // None outside is -1, beyond all.
    const auto first = static_cast<std::size_t>(hn::FindFirstTrue(f64, outside));
    if (first >= run.missing()) {
      made(run.missing());
      continue;
    }
    const auto layer = static_cast<std::size_t>(layers[first]);
    if (HWY_UNLIKELY(layer == kLayers - 1)) {
      made(first);
      break;
    }
    const std::size_t stillMissing = run.missing() - first;
    run.planPairs(first + 1);
    run.planned -= 2 * (first + 1);
    run.planThird(stillMissing);
    run.planned -= 1;
    at += 2 * (first + 1) + 1;
    run.out += first;
    run.out += isUnderCurve(layer, *run.out, uniforms[at - 1]);
  }
  shared = run;
  return at;
}

#endif

}  // namespace ziggurat::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ziggurat {

HWY_EXPORT(make);

std::size_t normals(Run& run, double const* uniforms, std::size_t n) {
  return HWY_DYNAMIC_DISPATCH(make)(run, uniforms, n);
}

}  // namespace ziggurat
#endif
