// Uniform fills of a stream.

#include "rng/chunks.h"
#include "rng/in_use.h"
#include "rng/kernels/delivery.h"
#include "rng/randstream.h"
#include "rng/uniform_source.h"
#include "rng/whole_draw.h"

// The shortest draws of all pay for nothing that the others need.
template <>
void randstream::randuFcn(double* out, std::uint64_t n) {
  const OneThread oneThread(*this);
  if (!antithetic_ && n <= plugin_rng::kUninterrupted && tfl_rng::FloatEnvironment::isDefault())
    return uniforms().randu(out, n);
  randuLongOrMirrored(out, n);
}

void randstream::randuLongOrMirrored(double* out, std::uint64_t n) {
  const tfl_rng::FloatEnvironment environment;
  const WholeDraw whole(*this, n);
  if (!antithetic_) return uniforms().randu(out, n);
  forEachChunk(n, chunk(), [&](std::size_t at, std::size_t len) {
    uniforms().randu(out + at, len);
    delivery::mirrorInPlace(out + at, len);
  });
}

template <>
void randstream::randuFcn(float* out, std::uint64_t n) {
  const InUse inUse(*this);
  const WholeDraw whole(*this, n);
  double drawn[kLongChunk];
  forEachChunk(n, chunk(), [&](std::size_t at, std::size_t len) {
    uniforms().randu(drawn, len);
    delivery::toFloats(drawn, antithetic_, out + at, len);
  });
}
