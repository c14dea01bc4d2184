// Uniform fills of a stream.

#include "rng/chunks.h"
#include "rng/randstream.h"

namespace {

constexpr double kSmallestUniform = 0x1p-53;
constexpr double kLargestUniform = 1 - 0x1p-53;
constexpr float kSmallestFloat = 0x1p-126F;  // the smallest normal float
constexpr float kLargestFloat = 1 - 0x1p-24F;

// 1-u, held inside (0,1) for the smallest uniforms too.
double mirrored(double u) { return u > kSmallestUniform ? 1 - u : kLargestUniform; }

float asFloat(double u) {
  const auto f = static_cast<float>(u);
  if (f == 1.0F) return kLargestFloat;
  return f == 0.0F ? kSmallestFloat : f;
}

}  // namespace

template <>
void randstream::randuFcn(double* out, unsigned long n) {
  if (!antithetic_) return plugin_->randu(out, n);
  forEachChunk(n, [&](std::size_t at, std::size_t len) {
    plugin_->randu(out + at, len);
    for (std::size_t i = at; i < at + len; ++i) out[i] = mirrored(out[i]);
  });
}

template <>
void randstream::randuFcn(float* out, unsigned long n) {
  double uniforms[kChunk];
  forEachChunk(n, [&](std::size_t at, std::size_t len) {
    plugin_->randu(uniforms, len);
    if (antithetic_)
      for (std::size_t i = 0; i < len; ++i) out[at + i] = asFloat(mirrored(uniforms[i]));
    else
      for (std::size_t i = 0; i < len; ++i) out[at + i] = asFloat(uniforms[i]);
  });
}
