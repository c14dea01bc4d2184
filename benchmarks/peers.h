#pragma once

// Generators of other libraries in the form in which their users write them: a callable () that
// returns one value.

#ifdef __SSE2__
#define HAVE_SSE2 1  // as libdsfmt is compiled in Debian on x86-64
#endif
#define DSFMT_MEXP 19937
#include <dSFMT.h>
#include <gsl/gsl_randist.h>
#include <gsl/gsl_rng.h>

#include <Random123/philox.h>
#include <Random123/threefry.h>
#include <Random123/u01fixedpt.h>
#include <algorithm>
#include <array>
#include <boost/random/generate_canonical.hpp>
#include <boost/random/mersenne_twister.hpp>
#include <boost/random/normal_distribution.hpp>
#include <boost/random/uniform_01.hpp>
#include <boost/random/uniform_int_distribution.hpp>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <utility>

#include "tfl_rng/normal_quantile_coefficients.h"

namespace peers {

// A distribution of the standard library or of Boost with its engine.
template <class Engine, class Distribution>
struct Drawn {
  Engine engine{};
  Distribution distribution{};
  auto operator()() { return distribution(engine); }
};

// 53 bits by hand from one 64-bit word or two 32-bit words. The conversion is that of a signed
// integer, which is one instruction everywhere.
template <class Engine>
struct ByHand53 {
  Engine engine{};
  double operator()() {
    if constexpr (Engine::word_size == 64) {
      return static_cast<double>(static_cast<std::int64_t>(engine() >> 11)) * 0x1p-53;
    } else {
      const std::int64_t high = static_cast<std::int64_t>(engine() >> 5);
      const std::int64_t low = static_cast<std::int64_t>(engine() >> 6);
      return static_cast<double>((high << 26) + low) * 0x1p-53;
    }
  }
};

template <class Real, int bits>
struct BoostCanonical {
  boost::random::mt19937 engine{};
  Real operator()() { return boost::random::generate_canonical<Real, bits>(engine); }
};

// The standard library's minimal-standard engine with its usual conversion, one step a value.
struct MinimalStandard {
  std::minstd_rand0 engine{};
  double operator()() { return static_cast<double>(engine()) * 4.656612875245797e-10; }
};

// The textbook form of L'Ecuyer's MRG32k3a in 64-bit integers (Operations Research 47, 1999).
struct TextbookMrg32k3a {
  static constexpr std::int64_t kM1 = 4294967087;
  static constexpr std::int64_t kM2 = 4294944443;
  std::array<std::int64_t, 3> x{12345, 12345, 12345};
  std::array<std::int64_t, 3> y{12345, 12345, 12345};

  double operator()() {
    std::int64_t p = (1403580 * x[1] - 810728 * x[0]) % kM1;
    if (p < 0) p += kM1;
    x = {x[1], x[2], p};
    std::int64_t q = (527612 * y[2] - 1370589 * y[0]) % kM2;
    if (q < 0) q += kM2;
    y = {y[1], y[2], q};
    return static_cast<double>(p > q ? p - q : p - q + kM1) * 2.328306549295728e-10;
  }
};

// The published double-precision form of the same.
struct TextbookMrg32k3aInDoubles {
  static constexpr double kM1 = 4294967087.0;
  static constexpr double kM2 = 4294944443.0;
  std::array<double, 3> x{12345, 12345, 12345};
  std::array<double, 3> y{12345, 12345, 12345};

  static double modulo(double value, double m) {
    value -= static_cast<double>(static_cast<std::int64_t>(value / m)) * m;
    return value < 0 ? value + m : value;
  }
  double operator()() {
    const double p = modulo(1403580.0 * x[1] - 810728.0 * x[0], kM1);
    x = {x[1], x[2], p};
    const double q = modulo(527612.0 * y[2] - 1370589.0 * y[0], kM2);
    y = {y[1], y[2], q};
    return (p > q ? p - q : p - q + kM1) * 2.328306549295728e-10;
  }
};

// A generator of GSL with one of its functions of a generator.
template <double (*function)(gsl_rng const*)>
class Gsl {
 public:
  explicit Gsl(gsl_rng_type const* type) : rng_(gsl_rng_alloc(type)) {}
  double operator()() { return function(rng_.get()); }

 private:
  struct Free {
    void operator()(gsl_rng* rng) const noexcept { gsl_rng_free(rng); }
  };
  std::unique_ptr<gsl_rng, Free> rng_;
};
inline double gslUniform(gsl_rng const* rng) { return gsl_rng_uniform(rng); }
inline double gslNormal(gsl_rng const* rng) { return gsl_ran_gaussian_ziggurat(rng, 1.0); }

// A counter generator of Random123: its blocks as 64-bit words, each one double.
template <class Generator>
class Random123 {
 public:
  void operator()(double* out, std::size_t n) {
    std::size_t i = 0;
    for (; i + kWords <= n; i += kWords) writeBlock(out + i);
    if (i < n) {
      std::array<double, kWords> last;
      writeBlock(last.data());
      std::copy_n(last.data(), n - i, out + i);
    }
  }

 private:
  static constexpr std::size_t kWords =
      sizeof(typename Generator::ctr_type) / sizeof(std::uint64_t);

  void writeBlock(double* out) {
    const auto block = generator_(counter_, key_);
    counter_.incr();
    std::array<std::uint64_t, kWords> words;
    std::memcpy(words.data(), &block, sizeof block);
    for (std::size_t k = 0; k < kWords; ++k) out[k] = u01fixedpt_open_open_64_double(words[k]);
  }

  Generator generator_{};
  typename Generator::ctr_type counter_{};
  typename Generator::key_type key_{{1}};
};

// Algorithm AS 241 (M. J. Wichura, Applied Statistics 37, 1988) as published, one value at a time.
inline double as241(double u) {
  namespace as = tfl_rng::quantile;
  const auto ratio = [](as::Rational const& c, double x) {
    double numerator = c.numerator[7];
    double denominator = c.denominator[7];
    for (int i = 6; i >= 0; --i) {
      numerator = numerator * x + c.numerator[i];
      denominator = denominator * x + c.denominator[i];
    }
    return numerator / denominator;
  };
  const double q = u - 0.5;
  if (std::fabs(q) <= as::kCentralHalfWidth) {
    return q * ratio(as::kCentral, as::kCentralShift - q * q);
  }
  const double r = std::sqrt(-std::log(q < 0 ? u : 1 - u));
  as::Rational const& tail = r <= as::kFarTail ? as::kIntermediate : as::kFar;
  return std::copysign(ratio(tail, r - tail.shift), q);
}

// Normals by inversion of a counter generator's uniforms.
template <class Generator>
struct Random123Inversion {
  Random123<Generator> uniforms{};
  void operator()(double* out, std::size_t n) {
    uniforms(out, n);
    for (std::size_t i = 0; i < n; ++i) out[i] = as241(out[i]);
  }
};

// libdsfmt: whole arrays where it allows them, else one value at a time.
class Dsfmt {
 public:
  Dsfmt() : state_(new dsfmt_t) { dsfmt_init_gen_rand(state_.get(), 0); }
  void operator()(double* out, std::size_t n) {
    if (n >= static_cast<std::size_t>(dsfmt_get_min_array_size()) && n % 2 == 0) {
      dsfmt_fill_array_open_open(state_.get(), out, static_cast<int>(n));
    } else {
      for (std::size_t i = 0; i < n; ++i) out[i] = dsfmt_genrand_open_open(state_.get());
    }
  }

 private:
  std::unique_ptr<dsfmt_t> state_;
};

// Fills an array by calls of a generator.
template <class Draw>
auto filling(Draw draw) {
  return [draw = std::move(draw)](auto* out, std::size_t n) mutable {
    for (std::size_t i = 0; i < n; ++i) out[i] = draw();
  };
}

}  // namespace peers
