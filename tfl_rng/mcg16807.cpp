#include "tfl_rng/mcg16807.h"

#include <cmath>

#include "tfl_rng/convert.h"
#include "tfl_rng/elementary.h"
#include "tfl_rng/kernels/mcg16807.h"
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
  namespace kernels = minimal_standard;
  word_ = fullPrecision() ? kernels::fill(kernels::Full{}, word_, out, n)
                          : kernels::fill(kernels::Reduced{}, word_, out, n);
}

void mcg16807::randuStreaming(double* out, std::size_t n) {
  namespace kernels = minimal_standard;
  word_ = fullPrecision() ? kernels::fillStreaming(kernels::Full{}, word_, out, n)
                          : kernels::fillStreaming(kernels::Reduced{}, word_, out, n);
}

errorID mcg16807::advance(std::uint64_t n) noexcept {
  word_ = minimalStandardAhead(word_, uint128{n} * (fullPrecision() ? 2 : 1));
  return ok;
}

void mcg16807::randn(double* out, std::size_t n) {
  for (std::size_t i = 0; i < n; i += 2) {
    auto const [first, second] = minimalStandardNormalPair(word_);
    out[i] = first;
    if (i + 1 < n) out[i + 1] = second;
  }
}

std::pair<double, double> minimalStandardNormalPair(std::uint32_t& word) noexcept {
  for (;;) {
    word = minimalStandardStep(word);
    const double x = 2 * minimalStandardUniform(word) - 1;
    word = minimalStandardStep(word);
    const double y = 2 * minimalStandardUniform(word) - 1;
    // The squared radius is never 0: no word lies at the middle of its odd modulus.
    const double s = x * x + y * y;
    if (s > 1) continue;
    const double factor = std::sqrt(-2 * pinnedLog(s) / s);
    return {x * factor, y * factor};
  }
}

}  // namespace tfl_rng
