// The edges of the layers of a ziggurat's candidates. Included once for each instruction set.

#if defined(TFL_RNG_KERNELS_LAYER_EDGES_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TFL_RNG_KERNELS_LAYER_EDGES_INL_H_
#undef TFL_RNG_KERNELS_LAYER_EDGES_INL_H_
#else
#define TFL_RNG_KERNELS_LAYER_EDGES_INL_H_
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR

template <class D>
struct LayerEdges {
  hwy::HWY_NAMESPACE::Vec<D> left, right;
};

// The edges x[layerOf(i)] and x[layerOf(i) + 1] in lane i of two or four: neighbours, loaded as a
// pair, which takes less time than to gather them one by one.
template <class D, class LayerOf>
HWY_INLINE LayerEdges<D> layerEdges(D d, double const* x, LayerOf layerOf) {
  namespace hn = hwy::HWY_NAMESPACE;
  const hn::CappedTag<double, 2> pair;
  const auto first = hn::LoadU(pair, x + layerOf(0));
  const auto second = hn::LoadU(pair, x + layerOf(1));
  if constexpr (hn::MaxLanes(d) == 2) {
    return {hn::InterleaveLower(first, second), hn::InterleaveUpper(d, first, second)};
  } else {
    const auto even = hn::Combine(d, hn::LoadU(pair, x + layerOf(2)), first);
    const auto odd = hn::Combine(d, hn::LoadU(pair, x + layerOf(3)), second);
    return {hn::InterleaveLower(even, odd), hn::InterleaveUpper(d, even, odd)};
  }
}

#endif

}  // namespace tfl_rng::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
