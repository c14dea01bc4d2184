#pragma once

// What reading, writing and deleting share: the walk over selected elements.

#include "language/cells.h"
#include "language/indexing.h"

namespace language {

// Calls visit(i, linear) for each selected element in column order: i counts them, `linear` is the
// position in an array of those extents.
template <class Visit>
void forEachSelected(Shape const& extents, Subscripts const& subscripts, Visit&& visit) {
  std::size_t const rank = subscripts.size();
  Shape counts(rank);
  for (std::size_t d = 0; d < rank; ++d) {
    counts[d] = subscripts[d].count(extents[d]);
    if (counts[d] == 0) return;
  }
  Shape strides(rank, 1);
  for (std::size_t d = 1; d < rank; ++d) strides[d] = strides[d - 1] * extents[d - 1];
  Shape at(rank, 0);
  std::uint64_t i = 0;
  for (;;) {
    std::uint64_t base = 0;
    for (std::size_t d = 1; d < rank; ++d) base += subscripts[d][at[d]] * strides[d];
    for (std::uint64_t k = 0; k < counts[0]; ++k) visit(i++, base + subscripts[0][k]);
    std::size_t d = 1;
    for (; d < rank; ++d) {
      if (++at[d] < counts[d]) break;
      at[d] = 0;
    }
    if (d >= rank) return;
  }
}

// Copies elements of `bytes` bytes; the usual sizes as whole words.
template <class Work>
void withElementSize(std::size_t bytes, Work&& work) {
  struct Sixteen {
    std::uint64_t words[2];
  };
  switch (bytes) {
    case 1:
      return work(std::uint8_t());
    case 2:
      return work(std::uint16_t());
    case 4:
      return work(std::uint32_t());
    case 8:
      return work(std::uint64_t());
    default:
      return work(Sixteen());
  }
}

inline std::size_t bytesPerElement(txArray const& value) {
  return embedded_host::elementBytes(value.classID()) * (value.isComplex() ? 2 : 1);
}

// An array of `value`'s class and complexity: zeros, unset cells or empty texts.
txArrayPtr makeBlank(txArray const& value, Shape const& shape);
// Copies elements between arrays of the same class and complexity. `walk` gets a function (to,
// from) and calls it for each pair of positions.
template <class Walk>
void copyElements(txArray& to, txArray const& from, Walk&& walk) {
  switch (to.classID()) {
    case txClassCell:
      walk([&](std::uint64_t t, std::uint64_t f) { copyCell(to, t, from, f); });
      break;
    case txClassString:
      walk([&](std::uint64_t t, std::uint64_t f) {
        embedded_host::setString(to, t, embedded_host::stringAt(from, f));
      });
      break;
    default:
      withElementSize(bytesPerElement(to), [&]<class Word>(Word) {
        auto* target = static_cast<Word*>(to.data());
        auto const* source = static_cast<Word const*>(from.data());
        walk([&](std::uint64_t t, std::uint64_t f) { target[t] = source[f]; });
      });
  }
}

}  // namespace language
