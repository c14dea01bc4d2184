#pragma once

// Cell arrays, kept within bounds.

#include "language/values.h"

namespace language {

// Raises when `value`, put into a cell array, would nest too deeply or hold too many values in all.
void checkCellContent(txArray const& value);

// A value for each cell; never-set ones are empty double matrices.
txArrayPtr cellContent(txArray const& cells, std::uint64_t index);
void copyCell(txArray& to, std::uint64_t toIndex, txArray const& from, std::uint64_t fromIndex);

// A 1-by-1 cell.
txArrayPtr wrapInCell(txArrayPtr value);

}  // namespace language
