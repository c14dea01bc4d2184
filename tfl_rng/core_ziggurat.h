#pragma once

// The ziggurat by which the twisters make normals: 256 layers of equal area.
// Source: G. Marsaglia and W. W. Tsang, The ziggurat method for generating random variables,
// Journal of Statistical Software 5 (2000) no. 8; layer, sign and magnitude come from disjoint
// bits, as J. A. Doornik, An improved ziggurat method to generate normal random samples (2005),
// asks for.
//
// A candidate takes one raw value; about 98.8% of all candidates are accepted at once. Each
// candidate in a wedge takes one uniform more, each attempt in the tail two.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include "tfl_rng/core_ziggurat_tables.h"
#include "tfl_rng/rejection.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng::ziggurat {

inline constexpr std::uint32_t kBaseLayer = 255;  // the base strip with the tail

inline constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;
inline constexpr std::uint64_t kMantissa = 0x000fffffffffffff;
inline constexpr std::uint64_t kExponentOfOne = 0x3ff0000000000000;

// How a raw value is taken apart: the layer in bits 0 to 7, the sign in bit 8, and the magnitude in
// the top bits of a mantissa, which behind the exponent of [1,2) and less kOffset is the middle of
// its cell of (0,1).

// 64 random bits, the magnitude in bits 12 to 63.
struct Bits64 {
  static constexpr double kOffset = 1 - 0x1p-53;
  static std::uint64_t mantissa(std::uint64_t bits) { return bits >> 12; }
  static double uniform(std::uint64_t bits) { return open52(bits); }
};

// 52 random bits, the magnitude in bits 9 to 51.
struct Bits52 {
  static constexpr double kOffset = 1 - 0x1p-44;
  static constexpr std::uint64_t kMagnitude = kMantissa & ~std::uint64_t{0x1ff};
  static std::uint64_t mantissa(std::uint64_t bits) { return bits & kMagnitude; }
  static double uniform(std::uint64_t bits) {
    return std::bit_cast<double>((bits & kMantissa) | kExponentOfOne | 1) - 1;
  }
};

struct Candidate {
  std::uint32_t layer;  // 0 to kBaseLayer
  std::uint64_t sign;   // the sign bit of the normal, all other bits 0
  double u;             // in (0,1), the place within the layer
};

template <class Layout>
Candidate candidate(std::uint64_t bits) {
  return {static_cast<std::uint32_t>(bits & 255), bits << 55 & kSignBit,
          std::bit_cast<double>(Layout::mantissa(bits) | kExponentOfOne) - Layout::kOffset};
}

// A branch on the sign would be mispredicted every other time.
inline double withSign(double magnitude, std::uint64_t sign) {
  return std::bit_cast<double>(std::bit_cast<std::uint64_t>(magnitude) | sign);
}

// Whether a magnitude x in the wedge of `layer` lies under the density; u in (0,1).
bool underDensity(std::uint32_t layer, double x, double u) noexcept;

// One attempt at a magnitude beyond kTailStart from two uniforms; negative when rejected.
double tailAttempt(double u1, double u2) noexcept;

// A magnitude beyond kTailStart.
template <class Source>
double tail(Source& source) {
  for (int rejected = 0; rejected < kMaxRejections; ++rejected) {
    const double u1 = Source::Layout::uniform(source.value());
    const double u2 = Source::Layout::uniform(source.value());
    const double x = tailAttempt(u1, u2);
    if (x > 0) return x;
  }
  throw RejectionLimit();
}

// One standard normal. `source` hands out raw values of its `Layout` by value().
template <class Source>
double normal(Source& source) {
  for (int rejected = 0; rejected < kMaxRejections; ++rejected) {
    const Candidate c = candidate<typename Source::Layout>(source.value());
    double x = c.u * kX[c.layer + 1];
    if (!(x < kX[c.layer])) {
      if (c.layer == kBaseLayer)
        x = tail(source);
      else if (!underDensity(c.layer, x, Source::Layout::uniform(source.value())))
        continue;
    }
    return withSign(x, c.sign);
  }
  throw RejectionLimit();
}

// Normals from the candidates values[0, n) up to the first that is not accepted at once, written to
// out[0, n), whose rest may be overwritten. Returns how many they are.
std::size_t acceptedRun(Bits64, std::uint64_t const* values, double* out, std::size_t n);
std::size_t acceptedRun(Bits52, std::uint64_t const* values, double* out, std::size_t n);

// Fills out[0, n), as n calls of normal() would. `source` further has atHand(), the raw values that
// it holds ready, and skip(), which drops some of them.
template <class Source>
void fill(Source& source, double* out, std::size_t n) {
  for (double* const end = out + n; out < end;) {
    const std::span<std::uint64_t const> ready = source.atHand();
    const std::size_t most = std::min(ready.size(), static_cast<std::size_t>(end - out));
    if (most > 1) {
      const std::size_t run = acceptedRun(typename Source::Layout{}, ready.data(), out, most);
      source.skip(run);
      out += run;
    }
    if (out < end) *out++ = normal(source);
  }
}

namespace reference {

// The scalar form of acceptedRun.
template <class Layout>
std::size_t acceptedRun(Layout, std::uint64_t const* values, double* out, std::size_t n) {
  std::size_t i = 0;
  for (; i < n; ++i) {
    const Candidate c = candidate<Layout>(values[i]);
    const double x = c.u * kX[c.layer + 1];
    if (!(x < kX[c.layer])) break;
    out[i] = withSign(x, c.sign);
  }
  return i;
}

}  // namespace reference
}  // namespace tfl_rng::ziggurat
