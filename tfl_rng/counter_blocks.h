#pragma once

// How draws are cut out of the blocks of a counter-based generator.

#include <algorithm>
#include <cstddef>

namespace tfl_rng {

// The next draws of a core, made ahead for requests of a few at a time: a vector of blocks costs
// little more than one of them. They follow from the state, which knows nothing of them: the core
// forgets them wherever it moves by anything else than taking them.
template <std::size_t drawsPerBlock>
class DrawsAhead {
 public:
  static constexpr std::size_t kBlocks = 32 / drawsPerBlock;
  // Larger requests are served better without.
  static constexpr std::size_t kMostTaken = 16;

  // Fills out[0, n), n at most kMostTaken, with the draws from `position` of block 0 on, where
  // those at hand begin too. `fill(count, to)` writes all draws of that many blocks.
  template <class Fill>
  void take(std::size_t position, double* out, std::size_t n, Fill fill) {
    if (kDraws - next_ < n) {
      fill(kBlocks, draws_);
      next_ = position;
    }
    for (std::size_t i = 0; i < n; ++i) out[i] = draws_[next_ + i];
    next_ += n;
  }
  void forget() noexcept { next_ = kDraws; }

 private:
  static constexpr std::size_t kDraws = kBlocks * drawsPerBlock;

  std::size_t next_ = kDraws;
  double draws_[kDraws];
};

// Fills out[0, n) with the draws that begin at `position` of block 0, `drawsPerBlock` draws to a
// block. `fill(first, count, to)` writes all draws of blocks [first, first + count). The first and
// the last block may be needed in part and pass through a buffer, where few draws are wanted
// together with all others: single blocks take long.
template <std::size_t drawsPerBlock, class Fill>
void drawFromBlocks(std::size_t position, double* out, std::size_t n, Fill fill) {
  constexpr std::size_t kFewDraws = 256;
  if (n == 0) return;
  const std::size_t end = position + n;
  if ((position != 0 || end % drawsPerBlock != 0) && end <= kFewDraws) {
    double draws[kFewDraws];
    fill(std::size_t{0}, (end + drawsPerBlock - 1) / drawsPerBlock, draws);
    std::copy_n(draws + position, n, out);
    return;
  }
  double block[drawsPerBlock];
  std::size_t next = 0;
  if (position != 0) {
    const std::size_t rest = std::min(n, drawsPerBlock - position);
    fill(next++, std::size_t{1}, block);
    out = std::copy_n(block + position, rest, out);
    n -= rest;
  }
  const std::size_t whole = n / drawsPerBlock;
  if (whole > 0) fill(next, whole, out);
  if (const std::size_t rest = n % drawsPerBlock; rest > 0) {
    fill(next + whole, std::size_t{1}, block);
    std::copy_n(block, rest, out + whole * drawsPerBlock);
  }
}

}  // namespace tfl_rng
