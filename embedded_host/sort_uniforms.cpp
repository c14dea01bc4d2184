// Two rounds of distribution and a sorting network.
//
// A value becomes a fixed-point number of 53 bits. Its leading bits choose a block of about 500 to
// 1000 values; what is left of it fits, above the value's index, into an entry of 63 bits. A block
// stays in the first-level cache, where its entries are dealt out to columns of about five, and
// columns of at most 16 are sorted side by side by one network, without a branch. Room for blocks
// and columns is fixed in advance, which saves counting their entries; what does not fit is noticed
// afterwards, and values so uneven are left to the general sort.

#include "embedded_host/sort_uniforms.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

#include "embedded_host/array_impl.h"
#include "embedded_host/interrupt.h"
#include "embedded_host/sort_kernels.h"
#include "host/allocator.h"

namespace embedded_host {

namespace {

using namespace sort_kernels;

constexpr int kEntryBits = 63;  // entries are compared with their sign
constexpr std::uint64_t kEntryMask = (std::uint64_t{1} << kEntryBits) - 1;
// With at least so many index bits, block and entry together hold all bits of a number.
constexpr int kFewestIndexBits = kEntryBits - kFixedBits;

int indexBitsFor(std::size_t n) {
  return std::max(kFewestIndexBits, static_cast<int>(std::bit_width(n - 1)));
}

// How many values, of which each falls into a block with equal chance, a block must have room for:
// six standard deviations above the mean, so that one sort in 10^5 or fewer needs more.
std::size_t roomFor(std::size_t n, std::size_t blocks) {
  if (blocks == 1) return n;
  double const mean = static_cast<double>(n) / static_cast<double>(blocks);
  return static_cast<std::size_t>(mean + 6 * std::sqrt(mean)) + 1;
}

// The values as entries in their blocks.
class Blocks {
 public:
  explicit Blocks(std::size_t n)
      : indexBits_(indexBitsFor(n)),
        count_(std::size_t{1} << (indexBits_ - kFewestIndexBits)),
        room_(roomFor(n, count_)),
        ends_(count_),
        entries_(room_ * count_ * sizeof(std::int64_t)) {}

  std::size_t count() const { return count_; }
  std::size_t room() const { return room_; }
  int indexBits() const { return indexBits_; }
  std::span<std::int64_t> block(std::size_t b) {
    return {entries() + b * room_, entries() + ends_[b]};
  }
  // The bits that the numbers of a block have in common.
  std::int64_t base(std::size_t b) const {
    return static_cast<std::int64_t>(b << (kEntryBits - indexBits_));
  }

  // Returns false when the values do not suit; `exact` tells whether the numbers are the values.
  bool distribute(std::span<const double> values, bool& exact) {
    for (std::size_t b = 0; b < count_; ++b) ends_[b] = static_cast<std::uint32_t>(b * room_);
    exact = true;
    constexpr std::size_t kChunk = 512;
    std::array<std::int64_t, kChunk> fixed;
    for (std::size_t at = 0; at < values.size(); at += kChunk) {
      checkInterrupt();
      std::size_t const n = std::min(kChunk, values.size() - at);
      FixedPoint const kind = toFixed(values.data() + at, n, fixed.data());
      if (!kind.inRange || !distributeChunk({fixed.data(), n}, at)) return false;
      exact &= kind.exact;
    }
    for (std::size_t b = 0; b < count_; ++b) {
      if (ends_[b] > (b + 1) * room_) return false;
    }
    return true;
  }

  // The memory of the entries, for the result: block by block the sorted values take no more room
  // than the entries they come from.
  std::int64_t* entries() { return static_cast<std::int64_t*>(entries_.writable()); }
  Elements release() && { return std::move(entries_); }

 private:
  // A block that overflows goes on into the next one, but never beyond the last.
  bool distributeChunk(std::span<const std::int64_t> fixed, std::size_t firstIndex) {
    std::int64_t* const to = entries();
    std::uint32_t* const ends = ends_.data();
    std::size_t const room = room_ * count_;
    int const blockShift = kEntryBits - indexBits_;
    for (std::size_t i = 0; i < fixed.size(); ++i) {
      auto const number = static_cast<std::uint64_t>(fixed[i]);
      std::size_t const slot = ends[number >> blockShift]++;
      if (slot >= room) return false;
      std::uint64_t const entry = number << indexBits_ | (firstIndex + i);
      to[slot] = static_cast<std::int64_t>(entry & kEntryMask);
    }
    return true;
  }

  int indexBits_;
  std::size_t count_;
  std::size_t room_;
  HostVector<std::uint32_t> ends_;
  Elements entries_;
};

// Sorts the entries of one block after the other.
class BlockSorter {
 public:
  // For blocks of at most `room` entries.
  explicit BlockSorter(std::size_t room)
      // All entries in the last column would go so far beyond it.
      : columns_(txMakeBuffer<std::int64_t>(columnsFor(room) * kRows + room * kGroup)),
        ends_(columnsFor(room)),
        sorted_(txMakeBuffer<std::int64_t>(room + kRows)) {}

  // The entries in ascending order, until the next call.
  std::span<std::int64_t> sort(std::span<const std::int64_t> entries) {
    std::size_t const columns = columnsFor(entries.size());
    deal(entries, columns);
    sortColumns(columns_.get(), columns / kGroup);
    if (!collect(columns)) {
      std::copy(entries.begin(), entries.end(), sorted_.get());
      std::sort(sorted_.get(), sorted_.get() + entries.size());
    }
    return {sorted_.get(), entries.size()};
  }

 private:
  static std::size_t columnsFor(std::size_t entries) {
    constexpr std::size_t kUsual = 5;  // entries in a column; more than 16 have a chance of 10^-5
    return (entries / kUsual / kGroup + 1) * kGroup;
  }
  // Where column c begins; its rows are kGroup apart.
  static std::size_t startOf(std::size_t c) { return c / kGroup * (kGroup * kRows) + c % kGroup; }

  // Deals the entries out to columns in ascending order. A column that is full goes on into the
  // next group.
  void deal(std::span<const std::int64_t> entries, std::size_t columns) {
    clearColumns(columns_.get(), columns / kGroup);
    std::uint32_t* const ends = ends_.data();
    for (std::size_t c = 0; c < columns; ++c) ends[c] = static_cast<std::uint32_t>(startOf(c));
    constexpr int kLeading = 31;
    std::int64_t* const to = columns_.get();
    for (std::int64_t entry : entries) {
      auto const leading = static_cast<std::uint64_t>(entry >> (kEntryBits - kLeading));
      std::size_t const c = leading * columns >> kLeading;
      std::uint32_t const slot = ends[c];
      ends[c] = slot + kGroup;
      to[slot] = entry;
    }
  }

  // Returns false when a column had more than its rows. Copying a fixed number of rows is faster
  // than asking how many there are; the rows too many are overwritten by the next column.
  bool collect(std::size_t columns) {
    using HalfRows = std::make_index_sequence<kRows / 2>;
    std::int64_t* to = sorted_.get();
    for (std::size_t c = 0; c < columns; ++c) {
      std::int64_t const* const from = columns_.get() + startOf(c);
      std::size_t const filled = (ends_[c] - startOf(c)) / kGroup;
      copyRows<0>(from, to, HalfRows());
      if (filled > kRows / 2) {
        if (filled > kRows) return false;
        copyRows<kRows / 2>(from, to, HalfRows());
      }
      to += filled;
    }
    return true;
  }
  template <std::size_t first, std::size_t... row>
  static void copyRows(std::int64_t const* from, std::int64_t* to, std::index_sequence<row...>) {
    ((to[first + row] = from[(first + row) * kGroup]), ...);
  }

  txBuffer<std::int64_t> columns_;
  HostVector<std::uint32_t> ends_;  // where the next entry of each column goes
  txBuffer<std::int64_t> sorted_;
};

// Entries whose numbers are equal though their values may not be, brought into the order of the
// values; equal values stay in the order of their indices.
void settleTies(std::span<std::int64_t> sorted, int indexBits, double const* values) {
  std::uint64_t const indexMask = (std::uint64_t{1} << indexBits) - 1;
  auto const valueOf = [&](std::int64_t entry) {
    return values[static_cast<std::uint64_t>(entry) & indexMask];
  };
  for (std::size_t first = 0; first < sorted.size();) {
    std::size_t end = first + 1;
    while (end < sorted.size() && sorted[end] >> indexBits == sorted[first] >> indexBits) ++end;
    if (end - first > 1) {
      std::stable_sort(sorted.begin() + first, sorted.begin() + end,
                       [&](std::int64_t a, std::int64_t b) { return valueOf(a) < valueOf(b); });
    }
    first = end;
  }
}

}  // namespace

SortedUniforms sortUniforms(std::span<const double> values, std::span<const std::uint64_t> dims) {
  // Blocks count their entries in 32 bits.
  if (values.size() >= std::numeric_limits<std::uint32_t>::max() / 2) return {};
  Blocks blocks(values.size());
  bool exact;
  if (!blocks.distribute(values, exact)) return {};
  SortedUniforms result;
  result.values = txCreateUninitialized(dims, txClassDouble);
  double* valuesOut = result.values->dataAs<double>();
  auto* positionsOut = reinterpret_cast<double*>(blocks.entries());
  BlockSorter sorter(blocks.room());
  for (std::size_t b = 0; b < blocks.count(); ++b) {
    checkInterrupt();
    auto const sorted = sorter.sort(blocks.block(b));
    // From 0.5 on doubles have no bits below 2^-53.
    bool const isExact = exact || blocks.base(b) >= std::int64_t{1} << (kFixedBits - 1);
    if (!isExact) settleTies(sorted, blocks.indexBits(), values.data());
    takeApart(sorted.data(), sorted.size(), blocks.indexBits(), blocks.base(b), valuesOut,
              positionsOut);
    if (!isExact) {
      for (std::size_t i = 0; i < sorted.size(); ++i) {
        valuesOut[i] = values[static_cast<std::size_t>(positionsOut[i]) - 1];
      }
    }
    valuesOut += sorted.size();
    positionsOut += sorted.size();
  }
  result.positions = makeImpl(txClassDouble, dims, std::move(blocks).release());
  return result;
}

}  // namespace embedded_host
