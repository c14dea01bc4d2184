#include "tfl_rng/philox4x32.h"

#include "tfl_rng/counter_blocks.h"
#include "tfl_rng/splitmix.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng {
namespace {

constexpr std::size_t kDraws = 2;  // of a block
constexpr int kRounds = 10;

philox4x32::Counter toWords(uint128 counter) noexcept {
  return {static_cast<std::uint32_t>(counter), static_cast<std::uint32_t>(counter >> 32),
          static_cast<std::uint32_t>(counter >> 64), static_cast<std::uint32_t>(counter >> 96)};
}

philox4x32::Key toWords(std::uint64_t key) noexcept {
  return {static_cast<std::uint32_t>(key), static_cast<std::uint32_t>(key >> 32)};
}

std::uint64_t join(std::uint32_t low, std::uint32_t high) noexcept {
  return std::uint64_t{high} << 32 | low;
}

// 1 + (sum mod 2^64 - 1); the sum itself may need 65 bits.
std::uint64_t keyOf(std::uint32_t seed, std::size_t streamIndex) noexcept {
  const uint128 sum = uint128{streamIndex} + mix64(seed);
  return 1 + low64(sum % ~std::uint64_t{0});
}

void fillBlocks(uint128 counter, std::uint64_t key, double* out, std::size_t count) {
  for (; count > 0; --count, ++counter, out += kDraws) {
    const philox4x32::Block block = philox4x32::encrypt(toWords(counter), toWords(key));
    out[0] = open52(join(block[0], block[1]));
    out[1] = open52(join(block[2], block[3]));
  }
}

}  // namespace

philox4x32::philox4x32(std::uint32_t seed, std::size_t streamIndex, bool fullPrecision)
    : CoreStreamRNG(streamIndex, fullPrecision) {
  reset(seed);
}

philox4x32::Block philox4x32::encrypt(Counter c, Key k) noexcept {
  for (int round = 0; round < kRounds; ++round) {
    const std::uint64_t p0 = std::uint64_t{0xD2511F53} * c[0];
    const std::uint64_t p1 = std::uint64_t{0xCD9E8D57} * c[2];
    c = {static_cast<std::uint32_t>(p1 >> 32) ^ c[1] ^ k[0], static_cast<std::uint32_t>(p1),
         static_cast<std::uint32_t>(p0 >> 32) ^ c[3] ^ k[1], static_cast<std::uint32_t>(p0)};
    k = {k[0] + 0x9E3779B9, k[1] + 0xBB67AE85};
  }
  return c;
}

void philox4x32::reset(std::uint32_t seed) {
  key_ = keyOf(seed, streamIndex());
  setSubstream(0);
}

void philox4x32::randu(double* out, std::size_t n) {
  drawFromBlocks<kDraws>(position_, out, n,
                         [this](std::size_t first, std::size_t count, double* to) {
                           fillBlocks(counter_ + first, key_, to, count);
                         });
  advance(n);
}

errorID philox4x32::advance(std::size_t n) {
  const uint128 draws = uint128{n} + position_;
  counter_ += draws / kDraws;
  position_ = static_cast<std::uint32_t>(draws % kDraws);
  return ok;
}

errorID philox4x32::setSubstream(std::size_t index) {
  if (index >= kNumSubstreams) return indexOutOfRange;
  counter_ = (uint128{index} << kLog2SubstreamLen) / kDraws;
  position_ = 0;
  noteSubstream(index);
  return ok;
}

philox4x32::State philox4x32::state() const noexcept {
  return {toWords(counter_), toWords(key_), position_};
}

void philox4x32::setState(State const& state) noexcept {
  counter_ = uint128{join(state.counter[2], state.counter[3])} << 64 |
             join(state.counter[0], state.counter[1]);
  key_ = join(state.key[0], state.key[1]);
  position_ = state.position % kDraws;
}

}  // namespace tfl_rng
