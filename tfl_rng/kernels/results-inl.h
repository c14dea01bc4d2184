// Where the results of a kernel go. Included once for each instruction set.

#if defined(TFL_RNG_KERNELS_RESULTS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TFL_RNG_KERNELS_RESULTS_INL_H_
#undef TFL_RNG_KERNELS_RESULTS_INL_H_
#else
#define TFL_RNG_KERNELS_RESULTS_INL_H_
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::HWY_NAMESPACE {

// Into the caches, as all stores do.
struct Cached {
  static constexpr bool kKept = true;
  template <class V, class D>
  HWY_INLINE static void store(V vector, D d, double* to) {
    hwy::HWY_NAMESPACE::StoreU(vector, d, to);
  }
};

// Past the caches, to addresses aligned to the vector; hwy::FlushStream() ends a series.
struct Streaming {
  static constexpr bool kKept = true;
  template <class V, class D>
  HWY_INLINE static void store(V vector, D d, double* to) {
    hwy::HWY_NAMESPACE::Stream(vector, d, to);
  }
};

// Nowhere: only the state is wanted.
struct Discarded {
  static constexpr bool kKept = false;
};

}  // namespace tfl_rng::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
