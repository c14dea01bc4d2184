#pragma once

// Subtract-with-borrow with lags 27 and 12 on 53-bit fractions, mixed with a hashed Weyl sequence.
// Source of the recurrence: G. Marsaglia and A. Zaman, A new class of random number generators,
// Annals of Applied Probability 1 (1991) 462-480, with base 2^53.
//
// Period      of the recurrence: the order of 2^53 modulo m = 2^1431 - 2^636 + 1, a probable prime:
//             (m - 1) / 2, about 2^1430, unless a prime above 2,000,000 divides its index.
// Recurrence  z(n) = z(n-12) - z(n-27) - borrow modulo 1; borrow is 2^-53 after a wrap, else 0.
//             A z of 0 is stored as 2^-53.
// A draw      one step in either precision mode. c += 0x9e3779b9 (32 bits); delivered is z with its
//             53 bits exclusive-or'ed: bits 0 to 31 with mix32(c), bits 32 to 52 with
//             mix32(~c) >> 11, where mix32 is the finaliser of MurmurHash3. 0 is delivered as
//             2^-53. Alone, the recurrence fails tests of gaps and birthday spacings.
// Jump-ahead  by the congruence modulo m that the recurrence is equivalent to.
// State       32 lag values (z, unmixed, in a ring), the borrow, the ring position of the next z,
//             and the Weyl counter c.
// Seeding     a 32-bit shift register (shr3cong.h) that starts at the seed (0: 521288629) makes
//             32 steps unread, then two for each lag value, 27 and 26 bits. c becomes the seed, the
//             borrow 0, the position 0.

#include "tfl_rng/core_rng.h"
#include "tfl_rng/export.h"
#include "tfl_rng/kernels/swb2712.h"

namespace tfl_rng {

class TFL_EXPORT swb2712 final : public CoreRNG {
 public:
  static constexpr std::size_t kLags = swb2712_kernel::kLags;
  using State = swb2712_kernel::State;

  swb2712(std::uint32_t seed, bool fullPrecision);

  void reset(std::uint32_t seed) override;
  void randu(double* out, std::size_t n) override;
  // Moves forward by n draws, in microseconds whatever n. Where a z of 0 lies far on the way, a
  // chance of n in 2^53, drawing stores it as 2^-53 and comes out elsewhere.
  errorID advance(std::uint64_t n);

  State const& state() const noexcept { return state_; }
  void setState(State const& state) noexcept { state_ = state; }

  // Values 0 to 31 are the lag values, 32 is the borrow (0 or 2^-53), 33 the position and 34 the
  // counter, both times 2^-52. Accepts values in [0, 1), the lag values from 2^-53 on. A borrow
  // below 2^-53 is none; of the position the low 5 bits count.
  using StateWord = double;
  static constexpr std::size_t kStateWords = kLags + 3;
  void save(StateWord* words) const noexcept;
  [[nodiscard]] bool load(StateWord const* words) noexcept;

 private:
  void jump(std::uint64_t n) noexcept;

  State state_;
};

}  // namespace tfl_rng
