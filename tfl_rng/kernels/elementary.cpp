#include "tfl_rng/elementary.h"
#include "tfl_rng/float_environment.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tfl_rng/kernels/elementary.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "tfl_rng/kernels/elementary-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::elementary::HWY_NAMESPACE {

void logInPlace(double* values, std::size_t n) {
  std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR
  for (; i + hn::Lanes(f64) <= n; i += hn::Lanes(f64))
    hn::StoreU(log(hn::LoadU(f64, values + i)), f64, values + i);
#endif
  for (; i < n; ++i) values[i] = pinnedLog(values[i]);
}

}  // namespace tfl_rng::elementary::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng {
namespace elementary {
HWY_EXPORT(logInPlace);
}

void pinnedLogInPlace(double* values, std::size_t n) noexcept {
  const FloatEnvironment environment;
  using namespace elementary;
  HWY_DYNAMIC_DISPATCH(logInPlace)(values, n);
}

}  // namespace tfl_rng
#endif
