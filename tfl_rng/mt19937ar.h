#pragma once

// The Mersenne Twister MT19937.
// Source: M. Matsumoto and T. Nishimura, Mersenne Twister: a 623-dimensionally equidistributed
// uniform pseudo-random number generator, ACM TOMACS 8 (1998) 3-30; initialisation of 2002
// (init_genrand). Period 2^19937 - 1. Raw output: 32-bit words, regenerated 624 at a time.
//
// A uniform is
//   in full precision     two words, 53 bits (the published genrand_res53), k = 0 given as 2^-53;
//   in reduced precision  one word w, (w + 0.5) * 2^-32.
// A normal takes one 64-bit value (two words, the first one low) for each attempt of the ziggurat
// of core_ziggurat.h, in either mode. Jumps by polynomials over the field of two elements.

#include <array>
#include <cstdint>

#include "tfl_rng/core_rng.h"
#include "tfl_rng/export.h"
#include "tfl_rng/kernels/mt19937.h"
#include "tfl_rng/uint128.h"

namespace tfl_rng {

class TFL_EXPORT mt19937ar final : public CoreNormalRNG {
 public:
  static constexpr std::size_t kWords = mt19937::kWords;

  // The published batch form at any time: a whole vector, and how many of its words are used up.
  struct State {
    std::array<std::uint32_t, kWords> words;
    std::uint32_t position;  // 0 to 624; at 624 the next draw regenerates the vector

    bool operator==(State const&) const = default;
  };

  // Seed 0 stands for "none chosen" and takes the published default, 5489.
  mt19937ar(std::uint32_t seed, bool fullPrecision);

  void reset(std::uint32_t seed) override;
  void randu(double* out, std::size_t n) override;
  void randn(double* out, std::size_t n) override;
  // Moves forward by n draws, in some tens of milliseconds at most. The first far jump of a program
  // takes about 20 more and 160 KB, which it keeps. May throw std::bad_alloc, nothing moved.
  errorID advance(std::uint64_t n);

  State state() const noexcept;
  // The position must be at most 624 and the words not all zero.
  void setState(State const& state) noexcept;

  // The 624 words of the vector, then the position. Refuses states that setState may not take.
  using StateWord = std::uint32_t;
  static constexpr std::size_t kStateWords = kWords + 1;
  void save(StateWord* words) const noexcept;
  [[nodiscard]] bool load(StateWord const* words) noexcept;

  // The state right after the published init_genrand(seed), for any seed.
  static State seeded(std::uint32_t seed) noexcept;

 private:
  class NormalSource;

  // Regenerates the batch so many times.
  void jump(uint128 batches);

  template <class Precision>
  void fill(Precision precision, double* out, std::size_t n);
  void regenerate();
  std::uint32_t nextWord();

  mt19937::Batch batch_{};
  std::size_t position_;
};

}  // namespace tfl_rng
