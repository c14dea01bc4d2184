#pragma once

// The tables of the stream's ziggurat: 256 layers of equal area under f(x) = exp(-x^2/2).
// Source: G. Marsaglia and W. W. Tsang, The Ziggurat Method for Generating Random Variables,
// Journal of Statistical Software 5 (2000).
//
// The literals of 15 digits define the method; they are not recomputed at run time.
// tools/check_ziggurat_tables.py compares them with the rule they come from:
//   X[255] = r, X[256] = v / f(r), F[i] = f(X[i]),
//   F[i-1] = F[i] + v / X[i], X[i-1] = sqrt(-2 ln F[i-1]) for i = 255 ... 1, ending at X[0] = 0.

#include <array>

namespace ziggurat {

inline constexpr int kLayers = 256;
inline constexpr double kTailStart = 3.65415288536101;          // r
inline constexpr double kInverseTailStart = 0.273661237329758;  // 1 / r

// The layers' right edges, from the peak down, the tail's start, and the width of the base strip.
extern const std::array<double, kLayers + 1> kX;
// f at these edges.
extern const std::array<double, kLayers + 1> kF;

}  // namespace ziggurat
