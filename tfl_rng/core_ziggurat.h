#pragma once

// The ziggurat by which the twisters make normals: 256 layers of equal area.
// Source: G. Marsaglia and W. W. Tsang, The ziggurat method for generating random variables,
// Journal of Statistical Software 5 (2000) no. 8; layer, sign and magnitude come from disjoint
// bits, as J. A. Doornik, An improved ziggurat method to generate normal random samples (2005),
// asks for.
//
// A candidate takes one raw value; about 98.8% of all candidates are accepted at once. Each
// candidate in a wedge takes one uniform more, each attempt in the tail two.

#include <cstdint>

#include "tfl_rng/core_ziggurat_tables.h"
#include "tfl_rng/rejection.h"

namespace tfl_rng::ziggurat {

inline constexpr std::uint32_t kBaseLayer = 255;  // the base strip with the tail

struct Candidate {
  std::uint32_t layer;  // 0 to kBaseLayer
  bool negative;
  double u;  // in (0,1), the place within the layer
};

// Whether a magnitude x in the wedge of `layer` lies under the density; u in (0,1).
bool underDensity(std::uint32_t layer, double x, double u) noexcept;

// One attempt at a magnitude beyond kTailStart from two uniforms; negative when rejected.
double tailAttempt(double u1, double u2) noexcept;

// A magnitude beyond kTailStart.
template <class Source>
double tail(Source& source) {
  for (int rejected = 0; rejected < kMaxRejections; ++rejected) {
    const double u1 = source.uniform();
    const double u2 = source.uniform();
    const double x = tailAttempt(u1, u2);
    if (x > 0) return x;
  }
  throw RejectionLimit();
}

// One standard normal. `source` has candidate() and uniform(), the latter in (0,1).
template <class Source>
double normal(Source& source) {
  for (int rejected = 0; rejected < kMaxRejections; ++rejected) {
    const Candidate c = source.candidate();
    double x = c.u * kX[c.layer + 1];
    if (!(x < kX[c.layer])) {
      if (c.layer == kBaseLayer)
        x = tail(source);
      else if (!underDensity(c.layer, x, source.uniform()))
        continue;
    }
    return c.negative ? -x : x;
  }
  throw RejectionLimit();
}

}  // namespace tfl_rng::ziggurat
