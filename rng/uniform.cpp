// Uniform fills of a stream.

#include "rng/chunks.h"
#include "rng/in_use.h"
#include "rng/kernels/delivery.h"
#include "rng/randstream.h"

template <>
void randstream::randuFcn(double* out, unsigned long n) {
  const InUse inUse(*this);
  if (!antithetic_) return plugin_->randu(out, n);
  forEachChunk(n, [&](std::size_t at, std::size_t len) {
    plugin_->randu(out + at, len);
    for (std::size_t i = at; i < at + len; ++i) out[i] = delivery::mirror(out[i]);
  });
}

template <>
void randstream::randuFcn(float* out, unsigned long n) {
  const InUse inUse(*this);
  double uniforms[kChunk];
  forEachChunk(n, [&](std::size_t at, std::size_t len) {
    plugin_->randu(uniforms, len);
    delivery::toFloats(uniforms, antithetic_, out + at, len);
  });
}
