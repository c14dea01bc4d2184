#pragma once

// Reading and writing parts of arrays.

#include <optional>

#include "language/values.h"

namespace language {

// One index of value(indices): positions along a dimension, from 0.
class Subscript {
 public:
  // `:` when null; otherwise positive whole numbers or a logical mask. `position` (from 1) is that
  // of the argument, for errors.
  Subscript(txArray const* index, int position);

  bool whole() const noexcept { return whole_; }
  // The number of positions in a dimension of that extent.
  std::uint64_t count(std::uint64_t extent) const noexcept { return whole_ ? extent : at_.size(); }
  std::uint64_t operator[](std::uint64_t i) const noexcept { return whole_ ? i : at_[i]; }
  // One more than the largest position.
  std::uint64_t reach() const noexcept { return reach_; }
  int position() const noexcept { return position_; }
  // The dimensions that a single index gives its result (a mask: those of a column).
  Shape const& shape() const noexcept { return shape_; }

 private:
  bool whole_ = false;
  int position_;
  std::uint64_t reach_ = 0;
  std::vector<std::uint64_t> at_;
  Shape shape_;
};
using Subscripts = std::vector<Subscript>;

// value(subscripts). Errors name the extent that was exceeded.
txArrayPtr readElements(txArray const& value, Subscripts const& subscripts);
// The elements value{subscripts} of a cell array.
std::vector<txArrayPtr> readCells(txArray const& value, Subscripts const& subscripts);

// target(subscripts) = value. Grows the target with zeros (empty cells, empty texts) and widens its
// class as a matrix of both would. `target` is null for a variable that does not exist yet; it is
// changed in place when nobody shares its elements. On an error it is as it was.
void writeElements(txArrayPtr& target, Subscripts const& subscripts, txArray const& value);
// target{subscripts} = value, for one cell.
void writeCell(txArrayPtr& target, Subscripts const& subscripts, txArrayPtr value);
// target(subscripts) = [].
void deleteElements(txArrayPtr& target, Subscripts const& subscripts);

// The extents that `count` subscripts see: those beyond the last fold into the last one.
Shape foldedExtents(txArray const& value, std::size_t count);
Shape foldedExtents(Dims dims, std::size_t count);

}  // namespace language
