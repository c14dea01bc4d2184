#pragma once

// The array of a shuffle from the top, a[p] = p for p in [0, n): what SparseShuffle stands in for
// where n is too large to write it down.

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>

#include "host/allocator.h"
#include "plugin_rng/interruption.h"

class DenseShuffle {
 public:
  using Position = std::uint32_t;

  // Memory comes from the host's allocator.
  explicit DenseShuffle(std::size_t n) : a_(txMakeBuffer<Position>(n)) {
    plugin_rng::inInterruptibleParts(n, [&](std::size_t at, std::size_t length) {
      std::iota(&a_[at], &a_[at] + length, static_cast<Position>(at));
    });
  }

  // Returns a[target], then sets a[target] = a[last].
  std::uint64_t takeAndReplace(std::uint64_t target, std::uint64_t last) {
    return std::exchange(a_[static_cast<std::size_t>(target)], a_[static_cast<std::size_t>(last)]);
  }

 private:
  txBuffer<Position> a_;
};
