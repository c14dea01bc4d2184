// Integers of a closed range: one uniform each, scaled and truncated, without rejection.

#include <cmath>
#include <type_traits>

#include "errors/keys.h"
#include "host/tfl_rng.h"
#include "rng/chunks.h"
#include "rng/element_types.h"
#include "rng/in_use.h"
#include "rng/kernels/delivery.h"
#include "rng/randstream.h"
#include "rng/uniform_source.h"
#include "rng/whole_draw.h"
#include "tfl_rng/plain_arithmetic.h"  // IWYU pragma: keep

namespace {

constexpr double kLargestCount = 0x1p53;

bool isWhole(double value) {
  return std::fabs(value) >= tfl_rng::kAllIntegral || value == std::trunc(value);
}

}  // namespace

double checkRandiLimits(double lo, double hi) {
  namespace keys = TALVOR::RandStream::randi;
  const tfl_rng::FloatEnvironment environment;
  if (!(hi >= lo) || !isWhole(lo) || !isWhole(hi)) errors::raise(keys::invalidLimits());
  if (std::fabs(lo) >= kLargestCount || std::fabs(hi) >= kLargestCount)
    errors::raise(keys::LimitsTooLarge());
  const double count = hi - lo + 1;
  if (count >= kLargestCount) errors::raise(keys::RangeTooLarge());
  return count;
}

template <class T>
void randstream::randiFcn(double lo, double hi, T* out, std::uint64_t n) {
  const InUse inUse(*this);
  // An antithetic stream mirrors the integer within the range, not the uniform.
  const delivery::Range range{lo, checkRandiLimits(lo, hi), antithetic_};
  const WholeDraw whole(*this, n);
  double drawn[std::is_same_v<T, double> ? 1 : kLongChunk];  // doubles are converted in place
  forEachChunk(n, chunk(), [&](std::size_t at, std::size_t len) {
    double* uniform = drawn;
    if constexpr (std::is_same_v<T, double>) uniform = out + at;
    uniforms().randu(uniform, len);
    delivery::toElements(uniform, range, out + at, len);
  });
}

#define INSTANTIATE(T, classID) \
  template TV_EXPORT void randstream::randiFcn<T>(double, double, T*, std::uint64_t);
RNG_INTEGER_ELEMENTS(INSTANTIATE)
#undef INSTANTIATE
