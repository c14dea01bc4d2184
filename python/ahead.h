#pragma once

// Uniforms drawn ahead for a caller that takes them one by one, as NumPy's distributions do.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "rng/randstream.h"

namespace tvpython {

// What is taken is what the stream would have delivered one at a time, and giveBack() leaves the
// stream where the last value taken left it: whoever uses the stream otherwise calls it first.
class Ahead {
 public:
  explicit Ahead(randstream& stream);

  double uniform() noexcept { return uniforms_[next()]; }
  // The 32 leading bits of one uniform.
  std::uint32_t word() noexcept { return words_[next()]; }
  // Two uniforms, the first one's bits on top.
  std::uint64_t twoWords() noexcept {
    if (end_ - at_ < 2) {
      std::uint32_t const high = word();
      return join(high, word());
    }
    at_ += 2;
    return join(words_[at_ - 2], words_[at_ - 1]);
  }

  void giveBack() noexcept;

 private:
  // The first block is short, and each is twice as long as the one before.
  static constexpr std::size_t kFirst = 16;
  static constexpr std::size_t kMost = 512;

  static std::uint64_t join(std::uint32_t high, std::uint32_t low) noexcept {
    return std::uint64_t{high} << 32 | low;
  }
  std::size_t next() noexcept {
    if (at_ == end_) refill();
    return at_++;
  }
  [[gnu::noinline]] void refill() noexcept;  // apart: the callers stay short

  randstream& stream_;
  std::size_t at_ = 0;
  std::size_t end_ = 0;
  std::size_t length_ = kFirst;                    // of the next block
  std::unique_ptr<std::uint64_t[]> const before_;  // the state in which the block was drawn
  std::array<double, kMost> uniforms_;
  std::array<std::uint32_t, kMost> words_;
};

}  // namespace tvpython
