#pragma once

// The fast part of the stream's ziggurat: candidates that lie inside their layer.

#include <cmath>
#include <cstddef>

#include "rng/ziggurat_tables.h"

namespace ziggurat {

// The candidate that two uniforms select. Most lie inside their layer and are accepted at once.
struct Candidate {
  std::size_t layer;
  double x;

  Candidate(double u0, double u1)
      : layer(static_cast<std::size_t>(static_cast<int>(kLayers * u0))),
        x((2 * u1 - 1) * kX[layer + 1]) {}
  bool isInside() const { return std::fabs(x) <= kX[layer]; }
};

// Reads pairs of uniforms up to the first candidate that is not inside its layer, at most `most`,
// and writes the accepted ones to out[0, returned). May write over uniforms that it has read: `out`
// lies at `uniforms` or before, or far from them.
std::size_t acceptedRun(double const* uniforms, std::size_t most, double* out);

// The scalar form: what the kernel must equal.
namespace reference {

inline std::size_t acceptedRun(double const* uniforms, std::size_t most, double* out) {
  for (std::size_t i = 0; i < most; ++i) {
    const Candidate candidate(uniforms[2 * i], uniforms[2 * i + 1]);
    if (!candidate.isInside()) return i;
    out[i] = candidate.x;
  }
  return most;
}

}  // namespace reference

}  // namespace ziggurat
