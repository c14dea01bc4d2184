#pragma once

// The double-precision SIMD-oriented fast Mersenne Twister dSFMT-19937.
// Source: M. Saito and M. Matsumoto, A PRNG specialized in double precision floating point numbers
// using an affine transition, MCQMC 2008 (Springer 2009) 589-602; seeding as published with it
// (init_gen_rand). Period at least 2^19937 - 1. Raw output: 52 bits in a 64-bit word, regenerated
// 382 at a time.
//
// A uniform is one word, the published open-open double: its 52 bits, the lowest one set, behind
// the exponent of [1,2), minus 1. The precision mode changes nothing. A normal takes one word for
// each attempt of the ziggurat of core_ziggurat.h. Jumps by polynomials over the field of two
// elements.

#include <array>
#include <cstdint>

#include "tfl_rng/core_rng.h"
#include "tfl_rng/export.h"
#include "tfl_rng/kernels/dsfmt19937.h"

namespace tfl_rng {

class TFL_EXPORT dsfmt19937 final : public CoreNormalRNG {
 public:
  static constexpr std::size_t kOutputs = dsfmt::kWords;  // of one regeneration

  // The published block: 191 pairs of output words and the pair called lung, as 32-bit words the
  // low half of each first. Any content is kept as it stands and is safe to draw from: a position
  // beyond 382 counts modulo 383, and of an output word only the 52 low bits are delivered.
  struct State {
    std::array<std::uint64_t, kOutputs + 2> words;
    std::uint32_t position;                 // outputs used up; at 382 the next draw regenerates
    std::array<std::uint32_t, 7> reserved;  // 0 after seeding, never used

    bool operator==(State const&) const = default;
  };

  dsfmt19937(std::uint32_t seed, bool fullPrecision);

  void reset(std::uint32_t seed) override;
  void randu(double* out, std::size_t n) override;
  void randn(double* out, std::size_t n) override;
  // Moves forward by n draws, in some tens of milliseconds at most. The first far jump of a program
  // takes about 20 more and 160 KB, which it keeps. May throw std::bad_alloc, nothing moved.
  errorID advance(std::uint64_t n);

  State state() const noexcept;
  void setState(State const& state) noexcept;

  // The block: its words, low half first, the position and the reserved words. Refuses nothing but
  // zeros: the core copes with any other.
  using StateWord = std::uint32_t;
  static constexpr std::size_t kStateWords = 2 * (kOutputs + 2) + 8;
  void save(StateWord* words) const noexcept;
  [[nodiscard]] bool load(StateWord const* words) noexcept;

  // The state right after the published init_gen_rand(seed).
  static State seeded(std::uint32_t seed) noexcept;

 private:
  class NormalSource;

  // Regenerates the batch so many times.
  void jump(std::uint64_t batches);

  dsfmt::Batch batch_{};
  std::size_t position_;
  std::array<std::uint32_t, 7> reserved_;
};

}  // namespace tfl_rng
