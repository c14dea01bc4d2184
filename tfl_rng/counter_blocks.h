#pragma once

// How draws are cut out of the blocks of a counter-based generator.

#include <algorithm>
#include <cstddef>

namespace tfl_rng {

// Fills out[0, n) with the draws that begin at `position` of block 0, `drawsPerBlock` draws to a
// block. `fill(first, count, to)` writes all draws of blocks [first, first + count); only the first
// and the last block may be needed in part and pass through a buffer.
template <std::size_t drawsPerBlock, class Fill>
void drawFromBlocks(std::size_t position, double* out, std::size_t n, Fill fill) {
  if (n == 0) return;
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
