#pragma once

// What a stream draws to what it delivers: uniforms from the other end, floats inside (0,1),
// integers of a range, and normals of either sign and variance.

#include <cstddef>

#include "rng/element_types.h"
#include "tfl_rng/convert.h"

namespace delivery {

// The values lo, lo+1, ..., lo+count-1; `mirrored` counts them from the other end.
struct Range {
  double lo;
  double count;
  bool mirrored;
};

// Replaces each of values[0, n) by mirror(value).
void mirrorInPlace(double* values, std::size_t n);

// out[i] = asFloat(uniforms[i]) or, mirrored, asFloat(mirror(uniforms[i])).
void toFloats(double const* uniforms, bool mirrored, float* out, std::size_t n);

// out[i] = storeAs<T>(range's value for uniforms[i]). `out` may be `uniforms`.
#define DECLARE(T, classID) \
  void toElements(double const* uniforms, Range const& range, T* out, std::size_t n);
RNG_INTEGER_ELEMENTS(DECLARE)
#undef DECLARE

// How a normal is changed on its way: negated, then divided by sqrt(2).
struct Change {
  bool negate;
  bool halfVariance;
};

// out[i] = changed(normals[i]), rounded to T. `out` may be `normals`.
void toNormals(double const* normals, Change change, double* out, std::size_t n);
void toNormals(double const* normals, Change change, float* out, std::size_t n);

// The scalar forms: what the kernels must equal.

inline constexpr double kSmallestUniform = 0x1p-53;
inline constexpr double kLargestUniform = 1 - 0x1p-53;
inline constexpr double kSqrt2 = 1.4142135623730951;
inline constexpr float kSmallestFloat = 0x1p-126F;  // the smallest normal float
inline constexpr float kLargestFloat = 1 - 0x1p-24F;

// 1-u, held inside (0,1) for the smallest uniforms too.
inline double mirror(double u) noexcept { return u > kSmallestUniform ? 1 - u : kLargestUniform; }

inline float asFloat(double u) noexcept {
  const auto f = static_cast<float>(u);
  if (f == 1.0F) return kLargestFloat;
  return f == 0.0F ? kSmallestFloat : f;
}

// The range's value for a uniform: scaled and truncated. Whole, and exact below 2^53.
inline double valueFor(double u, Range const& range) noexcept {
  const double k = tfl_rng::truncateProduct(u * range.count);
  return range.mirrored ? range.count - k - 1 + range.lo : k + range.lo;
}

inline double changed(double normal, Change change) noexcept {
  if (change.negate) normal = -normal;
  return change.halfVariance ? normal / kSqrt2 : normal;
}

}  // namespace delivery
