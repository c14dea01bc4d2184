#pragma once

// A shift register and a congruential generator, added.
// Sources: G. Marsaglia and W. W. Tsang, The ziggurat method for generating random variables,
// Journal of Statistical Software 5 (2000), issue 8: the shift register (13, 17, 5) and the
// ziggurat; G. Marsaglia, sci.stat.math, 20 January 1999: the congruential generator.
//
// Period      2^64 - 2^32 steps.
// Raw output  a step moves both words and returns their sum:
//             c <- 69069 c + 1234567;  s <- s ^ (s << 13), s ^ (s >> 17), s ^ (s << 5).
// State       word 0 congruential, word 1 shift register.
// Seeding     word 0 becomes 362436069 and word 1 the seed; 0 becomes 521288629.
// A draw      reduced precision: one step w, (w + 0.5) * 2^-32.
//             full precision: two steps, the first the high word; of the 64 bits the top 52, b,
//             give (b + 0.5) * 2^-52.
// Jump-ahead  by powers of the congruential step and of the register's matrix.
// Normals     the 128-layer ziggurat of the paper above, in either mode: one step for 98 % of them,
//             more where the first candidate lies at a layer's edge or in the tail.

#include "tfl_rng/core_rng.h"
#include "tfl_rng/export.h"
#include "tfl_rng/kernels/shr3cong.h"

namespace tfl_rng {

struct Ziggurat128;

class TFL_EXPORT shr3cong final : public CoreNormalRNG {
 public:
  static constexpr std::uint32_t kCongruentialStart = 362436069;
  // Stands in for a shift-register word of 0, which the register would never leave.
  static constexpr std::uint32_t kShiftRegisterDefault = 521288629;

  using State = shr3cong_kernel::State;

  shr3cong(std::uint32_t seed, bool fullPrecision);

  void reset(std::uint32_t seed) override;
  void randu(double* out, std::size_t n) override;
  // The same past the caches, for results that these will not hold.
  void randuStreaming(double* out, std::size_t n);
  void randn(double* out, std::size_t n) override;

  // Moves forward by n draws.
  errorID advance(std::uint64_t n) noexcept;

  State const& state() const noexcept { return state_; }
  void setState(State const& state) noexcept { state_ = state; }

  // The congruential word, then the shift register's, for which 0 is refused. Fractions and
  // multiples of 2^32 are not, though 0 as words: they become kShiftRegisterDefault.
  using StateWord = double;
  static constexpr std::size_t kStateWords = 2;
  void save(StateWord* words) const noexcept;
  [[nodiscard]] bool load(StateWord const* words) noexcept;

 private:
  double normal(Ziggurat128 const& zig) noexcept;
  double tailNormal() noexcept;

  State state_;
};

}  // namespace tfl_rng
