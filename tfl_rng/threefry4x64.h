#pragma once

// Threefry4x64-20: a counter encrypted by twenty rounds of additions, rotations and exclusive-ors.
// Source: J. K. Salmon, M. A. Moraes, R. O. Dror, D. E. Shaw, Parallel random numbers: as easy as
// 1, 2, 3, SC 2011.
//
// Period        2^258 words of 64 bits for each of 2^256 keys.
// Raw output    a block of four 64-bit words for each 256-bit counter.
// A draw        one word by open52; four draws a block, the same in both precision modes.
// Streams       2^64 - 2, one key each: (seed, streamIndex, 1, 0); the 1 keeps the state of a
//               fresh stream from being all zero. A stream holds 2^128 draws.
// Substreams    2^63; substream k starts k * 2^64 draws into the stream.
// Jump-ahead    an addition to the counter.

#include <array>
#include <cstdint>

#include "tfl_rng/core_rng.h"
#include "tfl_rng/counter_blocks.h"
#include "tfl_rng/export.h"
#include "tfl_rng/kernels/threefry4x64.h"

namespace tfl_rng {

class TFL_EXPORT threefry4x64 final : public CoreStreamRNG {
 public:
  using Block = std::array<std::uint64_t, 4>;  // as counter and key: low word first

  struct State {
    Block counter;  // of the block that holds the next draw
    Block key;
    std::uint32_t position;  // of the next draw inside its block, 0 to 3

    bool operator==(State const&) const = default;
  };

  static constexpr std::uint64_t kNumStreams = ~std::uint64_t{1};  // 2^64 - 2
  static constexpr std::uint64_t kNumSubstreams = std::uint64_t{1} << 63;
  static constexpr std::uint64_t kLog2StreamLen = 128;
  static constexpr std::uint64_t kLog2SubstreamLen = 64;

  threefry4x64(std::uint32_t seed, std::uint64_t streamIndex, bool fullPrecision);

  // The published function of counter and key.
  static Block encrypt(Block counter, Block const& key) noexcept;

  void reset(std::uint32_t seed) override;
  void randu(double* out, std::size_t n) override;
  errorID advance(std::uint64_t n) override;
  errorID setSubstream(std::uint64_t index) override;

  std::uint64_t getNumStreams() const override { return kNumStreams; }
  std::uint64_t getNumSubstreams() const override { return kNumSubstreams; }
  std::uint64_t getLog2StreamLen() const override { return kLog2StreamLen; }
  std::uint64_t getLog2SubstreamLen() const override { return kLog2SubstreamLen; }

  State const& state() const noexcept { return state_; }
  // Takes any words; the position is reduced to its two lowest bits.
  void setState(State const& state) noexcept;

  // Counter and key (low word first, of each the high half first) and the position. All zero is
  // refused, but as the position is reduced, zero words with another multiple of four make the one
  // state that is read and cannot be set.
  using StateWord = std::uint32_t;
  static constexpr std::size_t kStateWords = 17;
  void save(StateWord* words) const noexcept;
  [[nodiscard]] bool load(StateWord const* words) noexcept;

 private:
  void move(std::uint64_t n) noexcept;

  State state_{};
  DrawsAhead<threefry::kDraws> ahead_;
};

}  // namespace tfl_rng
