#pragma once

// A multiplicative lagged Fibonacci generator with lags 63 and 31 on odd 64-bit words:
//
//   x(n) = x(n-63) x(n-31)   mod 2^64
//
// Source: M. Mascagni and A. Srinivasan, Parameterizing parallel multiplicative lagged-Fibonacci
// generators, Parallel Computing 30 (2004).
//
// Period        2^61 (2^63 - 1).
// Raw output    one odd 64-bit word a step.
// A draw        one word by open52, the same in both precision modes.
// Streams       2^61, each on a cycle of its own (below). A stream holds 2^124 draws.
// Substreams    2^51; substream k starts k * 2^72 draws into the stream.
// Jump-ahead    by polynomials, some microseconds whatever the length; short ways are stepped.
//
// Streams on different cycles. Each word is (-1)^s 3^y (odd_power.h), and the exponents follow the
// additive recurrence y(n) = y(n-63) + y(n-31) modulo 2^62. The tables of 63 exponents that are not
// all even lie on cycles of the full period. On each of these lies exactly one canonical table,
//
//   y0 odd, all other y even, y15 = 0,
//
// so that two streams are on different cycles as soon as they differ in any free bit. They differ
// in y1, which holds the stream index.
//
// Proof. Modulo 2 the recurrence has a primitive polynomial: the lowest bits run through all of
// their 2^63 - 1 patterns, once in each P = 2^63 - 1 steps, so a cycle has the pattern 1, 0, ..., 0
// at 2^61 of its tables, P steps apart. P steps are the operator T = t^P on tables, t one step
// modulo t^63 - t^32 - 1. On lowest bits T is 1, hence T = 1 + 2a, T^2 = 1 + 4b with b = a + a^2,
// and by squaring on T^(2^k) = 1 + 2^(k+1) b' with b' = b modulo 2 from k = 1. With E the pattern
// 1, 0, ..., 0, the entries 15 of aE and bE are odd, which a test computes from T and T^2. So
// T^(2^k) changes bit k+1 of entry 15 and leaves the bits below, k = 0 to 60: among the 2^61 tables
// T^j y, j = 0 to 2^61 - 1, no two have the same entry 15, and exactly one has a 0 there.

#include <array>
#include <cstdint>

#include "tfl_rng/core_rng.h"
#include "tfl_rng/export.h"

namespace tfl_rng {

class TFL_EXPORT mlfg6331_64 final : public CoreStreamRNG {
 public:
  static constexpr std::size_t kLag = 63;
  static constexpr std::size_t kShortLag = 31;

  using Table = std::array<std::uint64_t, kLag>;  // the last 63 words, all odd

  struct State {
    Table ring;
    std::uint64_t position;  // of the oldest word in the ring, below 63
    Table start;             // of the stream, oldest first, from which substreams count

    bool operator==(State const&) const = default;
  };

  static constexpr std::uint64_t kNumStreams = std::uint64_t{1} << 61;
  static constexpr std::uint64_t kNumSubstreams = std::uint64_t{1} << 51;
  static constexpr std::uint64_t kLog2StreamLen = 124;
  static constexpr std::uint64_t kLog2SubstreamLen = 72;

  mlfg6331_64(std::uint32_t seed, std::uint64_t streamIndex, bool fullPrecision);

  // Moves `table`, oldest word first, by count * 2^log2Steps steps, log2Steps at most 72. False,
  // with nothing moved, when a word is even: such a table is no product of powers.
  [[nodiscard]] static bool jump(Table& table, std::uint64_t count, unsigned log2Steps);

  void reset(std::uint32_t seed) override;
  void randu(double* out, std::size_t n) override;
  // The same past the caches, for results that these will not hold.
  void randuStreaming(double* out, std::size_t n);
  // Both: cannotComputeState when the state has an even word.
  errorID advance(std::uint64_t n) override;
  errorID setSubstream(std::uint64_t index) override;

  std::uint64_t getNumStreams() const override { return kNumStreams; }
  std::uint64_t getNumSubstreams() const override { return kNumSubstreams; }
  std::uint64_t getLog2StreamLen() const override { return kLog2StreamLen; }
  std::uint64_t getLog2SubstreamLen() const override { return kLog2SubstreamLen; }

  State state() const noexcept;
  // The position must be below 63.
  void setState(State const& state) noexcept;

  // Words 0 to 62 are the ring, 63 is 1, 64 to 126 are the start, 127 is 1, 128 is reserved
  // (written 0 and ignored) and 129 is the position. Refuses even words among the first 128, and
  // positions from 63 on.
  using StateWord = std::uint64_t;
  static constexpr std::size_t kStateWords = 2 * (kLag + 1) + 2;
  void save(StateWord* words) const noexcept;
  [[nodiscard]] bool load(StateWord const* words) noexcept;

 private:
  // The last 63 words, oldest first, to be moved by n steps.
  Table& inOrder(std::uint64_t n) noexcept;

  // The words of the state's ring, which large requests turn until the oldest one is the first.
  Table words_;
  std::size_t oldest_;      // of words_
  std::uint64_t position_;  // of the state
  Table start_;
};

}  // namespace tfl_rng
