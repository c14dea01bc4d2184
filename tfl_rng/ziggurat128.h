#pragma once

// The tables of the 128-layer ziggurat for the normal distribution.
// Source: G. Marsaglia and W. W. Tsang, Journal of Statistical Software 5 (2000), issue 8.
//
// The layers under the curve f(x) = exp(-x^2/2) have one area, kArea. Layer i reaches to x[i] on
// its lower edge, x[127] = kTailStart; layer 0 is the base, tail included, stretched to a strip of
// width x[0]. A candidate is a signed 32-bit integer h whose low 7 bits choose the layer.

#include <array>
#include <cstdint>

#include "tfl_rng/export.h"

namespace tfl_rng {

struct Ziggurat128 {
  static constexpr double kTailStart = 3.442619855899;
  static constexpr double kArea = 9.91256303526217e-3;

  std::array<std::uint32_t, 128> inside;  // |h| below it: h * width is accepted at once
  std::array<double, 128> width;          // x[i] * 2^-31
  std::array<double, 128> height;         // f(x[i]); 1 at the top, i = 0

  TFL_EXPORT static Ziggurat128 const& tables();
};

}  // namespace tfl_rng
