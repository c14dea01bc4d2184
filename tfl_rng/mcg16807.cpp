#include "tfl_rng/mcg16807.h"

#include <algorithm>

#include "tfl_rng/convert.h"
#include "tfl_rng/kernels/mcg16807.h"
#include "tfl_rng/polar.h"
#include "tfl_rng/uint128.h"

namespace tfl_rng {

mcg16807::mcg16807(std::uint32_t seed, bool fullPrecision) : CoreNormalRNG(fullPrecision) {
  mcg16807::reset(seed);
}

void mcg16807::reset(std::uint32_t seed) {
  word_ = seed % kMinimalStandardModulus;
  if (word_ == 0) word_ = kMinimalStandardDefault;
}

bool mcg16807::load(StateWord const* words) noexcept {
  const std::uint32_t word = exchangeHalves(toLow32(*words));
  if (word == 0 || word >= kMinimalStandardModulus) return false;
  word_ = word;
  return true;
}

void mcg16807::randu(double* out, std::size_t n) {
  word_ = minimal_standard::fill(Form{fullPrecision()}, Stores::cached, word_, out, n);
}

void mcg16807::randuStreaming(double* out, std::size_t n) {
  word_ = minimal_standard::fill(Form{fullPrecision()}, Stores::streaming, word_, out, n);
}

errorID mcg16807::advance(std::uint64_t n) noexcept {
  word_ = minimalStandardAhead(word_, uint128{n} * (fullPrecision() ? 2 : 1));
  return ok;
}

void mcg16807::randn(double* out, std::size_t n) {
  constexpr std::size_t kMostPairs = 512;
  double uniforms[2 * kMostPairs];
  for (double* const end = out + n; out < end;) {
    const auto left = static_cast<std::size_t>(end - out);
    const std::size_t pairs = std::min((left + 1) / 2, kMostPairs);
    word_ = minimal_standard::fill(Form::reduced, Stores::cached, word_, uniforms, 2 * pairs);
    const std::size_t fitting = std::min(pairs, left / 2);
    out += 2 * polarNormals(uniforms, fitting, out);
    if (fitting == pairs) continue;
    const PolarPoint last(uniforms[2 * fitting], uniforms[2 * fitting + 1]);
    if (!last.isAccepted()) continue;
    const auto [first, second] = last.normals();
    *out++ = first;
    if (out < end) *out++ = second;
  }
}

std::pair<double, double> minimalStandardNormalPair(std::uint32_t& word) noexcept {
  for (;;) {
    word = minimalStandardStep(word);
    const double u = minimalStandardUniform(word);
    word = minimalStandardStep(word);
    const PolarPoint point(u, minimalStandardUniform(word));
    if (point.isAccepted()) return point.normals();
  }
}

}  // namespace tfl_rng
