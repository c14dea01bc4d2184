#pragma once

// MRG32k3a: two recurrences of order three modulo primes just below 2^32, combined by subtraction.
// Source: P. L'Ecuyer, Good parameters and implementations for combined multiple recursive random
// number generators, Operations Research 47 (1999); streams after P. L'Ecuyer, R. Simard,
// E. J. Chen, W. D. Kelton, An object-oriented random-number package with many long streams and
// substreams, Operations Research 50 (2002).
//
//   x(n) = 1403580 x(n-2) - 810728 x(n-3)   mod m1 = 2^32 - 209
//   y(n) = 527612 y(n-1) - 1370589 y(n-3)   mod m2 = 2^32 - 22853
//
// Period        (m1^3 - 1)(m2^3 - 1) / 2, about 2^191.
// Raw output    a step gives z = x - y mod m1 in 1 to m1, and u = z / (m1 + 1).
// A draw        full precision: two steps, u1 + u2 * 2^-24 modulo 1, as published for increased
//               precision, with 0 delivered as 2^-53; one step fails statistical batteries in its
//               low bits. Reduced precision: one step, u.
// Seeding       seed 0 takes the published default, 12345 six times; any other six words of
//               SplitMix64, each reduced into its modulus.
// Streams       2^63, which start 2^127 steps apart.
// Substreams    2^51, which start 2^76 steps apart. Both lengths count steps: half as many draws in
//               full precision.
// Jump-ahead    by powers of the two matrices: under a microsecond for most lengths.

#include <array>
#include <cstdint>

#include "tfl_rng/core_rng.h"
#include "tfl_rng/export.h"

namespace tfl_rng {

class TFL_EXPORT mrg32k3a final : public CoreStreamRNG {
 public:
  static constexpr std::uint32_t kModulus1 = 4294967087;
  static constexpr std::uint32_t kModulus2 = 4294944443;

  // The last three terms of the first recurrence, then of the second, oldest first. Each is below
  // its modulus and neither three are all zero.
  using Words = std::array<std::uint32_t, 6>;

  struct State {
    Words current;
    Words start;  // of the stream, from which substreams count

    bool operator==(State const&) const = default;
  };

  static constexpr std::uint64_t kNumStreams = std::uint64_t{1} << 63;
  static constexpr std::uint64_t kNumSubstreams = std::uint64_t{1} << 51;
  static constexpr std::uint64_t kLog2StreamLen = 127;
  static constexpr std::uint64_t kLog2SubstreamLen = 76;

  mrg32k3a(std::uint32_t seed, std::uint64_t streamIndex, bool fullPrecision);

  // `words` after count * 2^log2Steps steps, log2Steps at most 127.
  static Words ahead(Words words, std::uint64_t count, unsigned log2Steps) noexcept;

  void reset(std::uint32_t seed) override;
  void randu(double* out, std::size_t n) override;
  errorID advance(std::uint64_t n) override;
  errorID setSubstream(std::uint64_t index) override;

  std::uint64_t getNumStreams() const override { return kNumStreams; }
  std::uint64_t getNumSubstreams() const override { return kNumSubstreams; }
  std::uint64_t getLog2StreamLen() const override { return kLog2StreamLen; }
  std::uint64_t getLog2SubstreamLen() const override { return kLog2SubstreamLen; }

  State const& state() const noexcept { return state_; }
  // The words must be as described at Words.
  void setState(State const& state) noexcept { state_ = state; }

  // The words now, then those at the start of the stream. Refuses states that setState may not
  // take.
  using StateWord = std::uint32_t;
  static constexpr std::size_t kStateWords = 12;
  void save(StateWord* words) const noexcept;
  [[nodiscard]] bool load(StateWord const* words) noexcept;

 private:
  State state_;
};

}  // namespace tfl_rng
