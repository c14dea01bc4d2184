#pragma once

// The minimal standard generator x <- 16807 x mod (2^31 - 1), see minimal_standard.h.
//
// Period      2^31 - 2.
// State       one word in 1 .. 2^31 - 2.
// Seeding     the seed modulo 2^31 - 1; 0 becomes 1144108930.
// A draw      reduced precision: one step, x * 4.656612875245797e-10.
//             full precision: two steps, b = ((x1 - 1) >> 5) * 2^26 + ((x2 - 1) >> 5) of 52 bits,
//             (b + 0.5) * 2^-52.
// Jump-ahead  by a power of the factor.
// Normals     Marsaglia's polar method, two steps for each candidate pair, in either mode.

#include <utility>

#include "tfl_rng/core_rng.h"
#include "tfl_rng/export.h"
#include "tfl_rng/minimal_standard.h"

namespace tfl_rng {

class TFL_EXPORT mcg16807 final : public CoreNormalRNG {
 public:
  mcg16807(std::uint32_t seed, bool fullPrecision);

  void reset(std::uint32_t seed) override;
  void randu(double* out, std::size_t n) override;
  // The same past the caches, for results that these will not hold.
  void randuStreaming(double* out, std::size_t n);
  // Both normals of each accepted pair, in order. The state has no room for a second value between
  // calls: an odd n drops it.
  void randn(double* out, std::size_t n) override;

  // Moves forward by n draws.
  errorID advance(std::uint64_t n) noexcept;

  std::uint32_t word() const noexcept { return word_; }
  // Requires 1 <= word <= 2^31 - 2.
  void setWord(std::uint32_t word) noexcept { word_ = word; }

  // The word with its halves exchanged. Refuses what setWord may not take.
  using StateWord = double;
  static constexpr std::size_t kStateWords = 1;
  void save(StateWord* words) const noexcept { *words = exchangeHalves(word_); }
  [[nodiscard]] bool load(StateWord const* words) noexcept;

 private:
  std::uint32_t word_;
};

// Two independent standard normals by the polar method: pairs of uniforms, one step each, until
// the point (2 u1 - 1, 2 u2 - 1) lies in the unit circle. `word` moves on and must be a state.
// Source: G. Marsaglia and T. A. Bray, SIAM Review 6 (1964) 260-264.
TFL_EXPORT std::pair<double, double> minimalStandardNormalPair(std::uint32_t& word) noexcept;

}  // namespace tfl_rng
