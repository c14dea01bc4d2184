#pragma once

// The virtual array of a shuffle from the top, a[p] = p for p in [0, n), of which only the entries
// that have changed are stored: O(k) memory for k steps, whatever n is.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "host/allocator.h"
#include "plugin_rng/interruption.h"
#include "tfl_rng/uint128.h"

class SparseShuffle {
 public:
  // Room for `steps` steps. Memory comes from the host's allocator.
  explicit SparseShuffle(std::size_t steps)
      : buckets_(steps < kRoomy ? kSpare * steps : steps),
        heads_(txMakeBuffer<std::size_t>(buckets_)),
        entries_(txMakeBuffer<Entry>(steps)) {
    plugin_rng::inInterruptibleParts(buckets_, [&](std::size_t at, std::size_t length) {
      std::fill_n(&heads_[at], length, kEnd);
    });
  }

  // Returns a[target], then sets a[target] = a[last]. `last` is not asked for again.
  std::uint64_t takeAndReplace(std::uint64_t target, std::uint64_t last) {
    Entry const* const top = find(last);
    const std::uint64_t replacement = top ? top->value : last;
    if (Entry* const entry = find(target)) {
      const std::uint64_t taken = entry->value;
      entry->value = replacement;
      return taken;
    }
    if (target != last) insert(target, replacement);
    return target;
  }

 private:
  struct Entry {
    std::uint64_t position;
    std::uint64_t value;
    std::size_t next;  // index of the chain's next entry, or kEnd
  };
  // While it stays in the core's own caches, a table that is mostly empty saves mispredicted
  // branches.
  static constexpr std::size_t kRoomy = std::size_t{1} << 14;
  static constexpr std::size_t kSpare = 8;
  static constexpr auto kEnd = static_cast<std::size_t>(0xFFFF'FFFF'FFFF);  // marks links only

  // A bucket without a division: the high half of a mixed position times the number of buckets.
  std::size_t& head(std::uint64_t position) {
    const std::uint64_t mixed = position * 0x9E37'79B9'7F4A'7C15;
    return heads_[static_cast<std::size_t>(tfl_rng::high64(tfl_rng::uint128{mixed} * buckets_))];
  }
  Entry* find(std::uint64_t position) {
    for (std::size_t i = head(position); i != kEnd; i = entries_[i].next)
      if (entries_[i].position == position) return &entries_[i];
    return nullptr;
  }
  void insert(std::uint64_t position, std::uint64_t value) {
    std::size_t& first = head(position);
    entries_[size_] = {position, value, first};
    first = size_++;
  }

  std::size_t buckets_;
  txBuffer<std::size_t> heads_;
  txBuffer<Entry> entries_;
  std::size_t size_ = 0;
};
