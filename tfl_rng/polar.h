#pragma once

// Marsaglia's polar method on pairs of uniforms.
// Source: G. Marsaglia and T. A. Bray, SIAM Review 6 (1964) 260-264.

#include <cstddef>
#include <utility>

#include "tfl_rng/export.h"

namespace tfl_rng {

// The point (2u-1, 2v-1) of two uniforms, accepted where its squared radius s is at most 1, but for
// the middle, and then scaled to two independent standard normals.
struct PolarPoint {
  double x, y, s;

  PolarPoint(double u, double v) noexcept : x(2 * u - 1), y(2 * v - 1), s(x * x + y * y) {}
  bool isAccepted() const noexcept { return s <= 1 && s != 0; }
  TFL_EXPORT std::pair<double, double> normals() const noexcept;
};

// Reads `pairs` pairs of uniforms and writes the two normals of each accepted one to `out`, in
// order; the rest of out[0, 2 * pairs) may be written over. Returns the number of accepted pairs.
// `out` lies apart from the uniforms.
TFL_EXPORT std::size_t polarNormals(double const* uniforms, std::size_t pairs,
                                    double* out) noexcept;

// The scalar form: what the kernel must equal.
namespace reference {

inline std::size_t polarNormals(double const* uniforms, std::size_t pairs, double* out) noexcept {
  double* const begin = out;
  for (std::size_t i = 0; i < pairs; ++i) {
    const PolarPoint point(uniforms[2 * i], uniforms[2 * i + 1]);
    if (!point.isAccepted()) continue;
    const auto [first, second] = point.normals();
    *out++ = first;
    *out++ = second;
  }
  return static_cast<std::size_t>(out - begin) / 2;
}

}  // namespace reference

}  // namespace tfl_rng
