#include "tfl_rng/kernels/exclusive_or.h"

#include <cstdint>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tfl_rng/kernels/exclusive_or.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::exclusive_or::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

void add(std::uint8_t* out, std::uint8_t const* in, std::size_t n) {
  std::size_t i = 0;
#if HWY_TARGET == HWY_SCALAR
  for (; i + sizeof(std::uint64_t) <= n; i += sizeof(std::uint64_t)) {
    std::uint64_t sum, word;
    std::memcpy(&sum, out + i, sizeof sum);
    std::memcpy(&word, in + i, sizeof word);
    sum ^= word;
    std::memcpy(out + i, &sum, sizeof sum);
  }
#else
  constexpr hn::ScalableTag<std::uint8_t> u8;
  for (; i + hn::Lanes(u8) <= n; i += hn::Lanes(u8))
    hn::StoreU(hn::Xor(hn::LoadU(u8, out + i), hn::LoadU(u8, in + i)), u8, out + i);
#endif
  for (; i < n; ++i) out[i] ^= in[i];
}

}  // namespace tfl_rng::exclusive_or::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng {
namespace exclusive_or {
HWY_EXPORT(add);
}

void exclusiveOr(void* out, void const* in, std::size_t bytes) noexcept {
  using namespace exclusive_or;
  HWY_DYNAMIC_DISPATCH(add)
  (static_cast<std::uint8_t*>(out), static_cast<std::uint8_t const*>(in), bytes);
}

}  // namespace tfl_rng
#endif
