// Standard normals of a stream: the generator's own, or one of three transformations of uniforms.

#include <algorithm>
#include <type_traits>
#include <utility>

#include "host/tfl_rng.h"
#include "rng/chunks.h"
#include "rng/in_use.h"
#include "rng/kernels/delivery.h"
#include "rng/randstream.h"
#include "rng/rejections.h"
#include "rng/uniform_source.h"
#include "rng/whole_draw.h"
#include "tfl_rng/polar.h"

// Marsaglia's polar method, of no more uniforms than it needs: two for each pair still to make, and
// again for each rejected one. A last normal that is too many is kept for the next call.
void randstream::randnPolar(double* out, std::size_t n) {
  if (n == 0) return;
  double* const end = out + n;
  if (std::exchange(pendingNormalValid_, false)) *out++ = pendingNormal_;
  Rejections rejections;
  double drawn[kLongChunk];
  while (out < end) {
    const auto left = static_cast<std::size_t>(end - out);
    const std::size_t pairs = std::min((left + 1) / 2, kLongChunk / 2);
    uniforms().randu(drawn, 2 * pairs);
    const std::size_t fitting = std::min(pairs, left / 2);
    const std::size_t accepted = tfl_rng::polarNormals(drawn, fitting, out);
    out += 2 * accepted;
    rejections.count(fitting, accepted > 0);
    if (fitting == pairs) continue;
    const tfl_rng::PolarPoint last(drawn[2 * fitting], drawn[2 * fitting + 1]);
    rejections.count(1, last.isAccepted());
    if (!last.isAccepted()) continue;
    const auto [first, second] = last.normals();
    *out++ = first;
    if (out < end) {
      *out++ = second;
    } else {
      pendingNormal_ = second;
      pendingNormalValid_ = true;
    }
  }
}

void randstream::randnInversion(double* out, std::size_t n) {
  forEachChunk(n, chunk(), [&](std::size_t at, std::size_t len) {
    uniforms().randu(out + at, len);
    tfl_rng::normalQuantileInPlace(out + at, len);
  });
}

void randstream::drawNativeNormals(double* out, std::uint64_t n) {
  counts_.normals += n;
  counts_.latest = drawsInThread += n;
  normalView_->randn(out, static_cast<std::size_t>(n));
}

namespace {

// The stream's own methods make so many at once of a generator of this library: each time the last
// few cost some short requests. Whole chunks of the ziggurat, and a draw may be ended after them.
constexpr std::size_t kManyNormals = 13'100;
static_assert(kManyNormals % kChunk == 0 && kLongChunk % kChunk == 0 &&
              plugin_rng::kUninterrupted % kManyNormals == 0);

// Stores normals as T: negated for an antithetic stream, then divided for half the variance.
template <class T>
void deliver(double const* normals, T* out, std::size_t n, delivery::Change change) {
  bool const asTheyAre = !change.negate && !change.halfVariance;
  if (std::is_same_v<T, float> || !asTheyAre) delivery::toNormals(normals, change, out, n);
}

}  // namespace

template <>
void randstream::randnFcn(double* out, std::uint64_t n, bool halfVariance) {
  const InUse inUse(*this);
  const delivery::Change change{antithetic_, halfVariance};
  if (nativeNormals_ && n <= plugin_rng::kUninterrupted) {
    drawNativeNormals(out, n);
    return deliver(out, out, static_cast<std::size_t>(n), change);
  }
  const WholeDraw whole(*this, n);
  if (nativeNormals_) {
    drawNativeNormals(out, n);
    return plugin_rng::inInterruptibleParts(
        n, [&](std::size_t at, std::size_t len) { deliver(out + at, out + at, len, change); });
  }
  forEachChunk(n, ownView_ ? kManyNormals : kChunk, [&](std::size_t at, std::size_t len) {
    (this->*normalGenerator_)(out + at, len);
    deliver(out + at, out + at, len, change);
  });
}

template <>
void randstream::randnFcn(float* out, std::uint64_t n, bool halfVariance) {
  const InUse inUse(*this);
  const WholeDraw whole(*this, n);
  double scratch[kLongChunk];
  forEachChunk(n, chunk(), [&](std::size_t at, std::size_t len) {
    if (nativeNormals_)
      drawNativeNormals(scratch, len);
    else
      (this->*normalGenerator_)(scratch, len);
    deliver(scratch, out + at, len, {antithetic_, halfVariance});
  });
}
