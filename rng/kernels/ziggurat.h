#pragma once

// The stream's ziggurat: normals from a row of uniforms, up to a candidate of the tail.

#include <cmath>
#include <cstddef>

#include "rng/ziggurat_tables.h"
#include "tfl_rng/elementary_exp.h"

namespace ziggurat {

// The candidate that two uniforms select. Most lie inside their layer and are accepted at once.
struct Candidate {
  std::size_t layer;
  double x;

  Candidate(double u0, double u1)
      : layer(static_cast<std::size_t>(static_cast<int>(kLayers * u0))),
        x((2 * u1 - 1) * kX[layer + 1]) {}
  bool isInside() const { return std::fabs(x) <= kX[layer]; }
  bool isInTail() const { return layer == kLayers - 1 && !isInside(); }
};

// Normals are made in chunks. A chunk plans to have two uniforms for each normal that it still has
// to make, and plans anew whenever an attempt finds less than it needs; what is left of the plan at
// the end is passed over.
struct Run {
  static constexpr std::size_t kChunk = 100;

  double* out;              // where the next normal goes
  double* chunkEnd;         // where the chunk ends
  double* end;              // where the last chunk ends
  std::size_t planned = 0;  // uniforms of the plan that are unread

  Run(double* to, std::size_t n) : out(to), chunkEnd(to), end(to + n) {}

  std::size_t missing() const { return static_cast<std::size_t>(chunkEnd - out); }
  // `count` attempts, at most as many as normals are missing, of which all but the last succeed,
  // will find their two uniforms. (The plan made at any of them reaches equally far.)
  void planPairs(std::size_t count) {
    if (planned < 2 * count) planned = 2 * missing();
  }
  // An attempt that has read two will find a third one.
  void planThird(std::size_t stillMissing) {
    if (planned == 0) planned = 2 * stillMissing - 1;
  }
  // Begins the next chunk, if one is left; uniforms to pass over.
  std::size_t endChunk() {
    const std::size_t passed = planned;
    planned = 0;
    const auto left = static_cast<std::size_t>(end - out);
    chunkEnd = out + (left < kChunk ? left : kChunk);
    return passed;
  }
};

// Makes normals from uniforms[0, n) until a candidate of the tail is next, all normals are made, or
// no more than kMostUniformsLeft uniforms or kMostNormalsLeft normals are left. Returns how many
// uniforms it has read and passed over, which may be more than n. Writes over all of [out, end).
std::size_t normals(Run& run, double const* uniforms, std::size_t n);
inline constexpr std::size_t kMostUniformsLeft = 8;
inline constexpr std::size_t kMostNormalsLeft = 3;

// Whether a point of a wedge, x across and u up, lies under the curve.
inline bool isUnderCurve(std::size_t layer, double x, double u) {
  const double y = kF[layer + 1] + (kF[layer] - kF[layer + 1]) * u;
  return tfl_rng::elementary::exp(-0.5 * x * x) > y;
}

// The scalar forms: what the kernel must equal.
namespace reference {

// One attempt at a normal, of a candidate that is not in the tail. A candidate in a wedge reads a
// third uniform. Returns the number read.
inline std::size_t attempt(Run& run, double const* uniforms) {
  const Candidate candidate(uniforms[0], uniforms[1]);
  run.planPairs(1);
  run.planned -= 2;
  *run.out = candidate.x;
  if (candidate.isInside()) {
    ++run.out;
    return 2;
  }
  run.planThird(run.missing());
  run.planned -= 1;
  if (isUnderCurve(candidate.layer, candidate.x, uniforms[2])) ++run.out;
  return 3;
}

inline std::size_t normals(Run& run, double const* uniforms, std::size_t n) {
  for (std::size_t at = 0;;) {
    if (run.out == run.chunkEnd) at += run.endChunk();
    if (run.out == run.end || at + 3 > n) return at;
    if (Candidate(uniforms[at], uniforms[at + 1]).isInTail()) return at;
    at += attempt(run, uniforms + at);
  }
}

}  // namespace reference

}  // namespace ziggurat
