#pragma once

// Philox4x32-10: a counter encrypted by ten rounds of multiplications.
// Source: J. K. Salmon, M. A. Moraes, R. O. Dror, D. E. Shaw, Parallel random numbers: as easy as
// 1, 2, 3, SC 2011.
//
// Period        2^130 words of 32 bits for each of 2^64 keys.
// Raw output    a block of four 32-bit words for each 128-bit counter.
// A draw        two words as one 64-bit number, the first word low, by open52; two draws a block,
//               the same in both precision modes.
// Streams       2^64 - 2, one key each. The key is 1 + ((streamIndex + mix64(seed)) mod 2^64 - 1):
//               never 0, different for every index of a seed, and the streams of neighbouring
//               seeds lie far apart. A stream holds 2^128 draws.
// Substreams    2^63; substream k starts k * 2^64 draws into the stream.
// Jump-ahead    an addition to the counter.

#include <array>
#include <cstdint>

#include "tfl_rng/core_rng.h"
#include "tfl_rng/counter_blocks.h"
#include "tfl_rng/export.h"
#include "tfl_rng/kernels/philox4x32.h"
#include "tfl_rng/uint128.h"

namespace tfl_rng {

class TFL_EXPORT philox4x32 final : public CoreStreamRNG {
 public:
  using Counter = std::array<std::uint32_t, 4>;  // low word first
  using Key = std::array<std::uint32_t, 2>;      // low word first
  using Block = std::array<std::uint32_t, 4>;

  struct State {
    Counter counter;  // of the block that holds the next draw
    Key key;
    std::uint32_t position;  // of the next draw inside its block, 0 or 1

    bool operator==(State const&) const = default;
  };

  static constexpr std::uint64_t kNumStreams = ~std::uint64_t{1};  // 2^64 - 2
  static constexpr std::uint64_t kNumSubstreams = std::uint64_t{1} << 63;
  static constexpr std::uint64_t kLog2StreamLen = 128;
  static constexpr std::uint64_t kLog2SubstreamLen = 64;

  philox4x32(std::uint32_t seed, std::uint64_t streamIndex, bool fullPrecision);

  // The published function of counter and key.
  static Block encrypt(Counter counter, Key key) noexcept;

  void reset(std::uint32_t seed) override;
  void randu(double* out, std::size_t n) override;
  errorID advance(std::uint64_t n) override;
  errorID setSubstream(std::uint64_t index) override;

  std::uint64_t getNumStreams() const override { return kNumStreams; }
  std::uint64_t getNumSubstreams() const override { return kNumSubstreams; }
  std::uint64_t getLog2StreamLen() const override { return kLog2StreamLen; }
  std::uint64_t getLog2SubstreamLen() const override { return kLog2SubstreamLen; }

  State state() const noexcept;
  // Takes any words; the position is reduced to its lowest bit.
  void setState(State const& state) noexcept;

  // The members of State in their order. All zero is refused, but as the position is reduced, zero
  // words with another even position make the one state that is read and cannot be set.
  using StateWord = std::uint32_t;
  static constexpr std::size_t kStateWords = 7;
  void save(StateWord* words) const noexcept;
  [[nodiscard]] bool load(StateWord const* words) noexcept;

 private:
  void move(std::uint64_t n) noexcept;

  uint128 counter_ = 0;
  std::uint64_t key_ = 0;
  std::uint32_t position_ = 0;
  DrawsAhead<philox::kDraws> ahead_;
};

}  // namespace tfl_rng
