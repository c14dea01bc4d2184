#include "language/cells.h"

#include "language/fault.h"
#include "language/limits.h"

namespace language {

namespace {

void visit(txArray const& value, int depth, std::uint64_t& seen) {
  if (++seen > kMaxCellValues) {
    raiseFault("cellSize", "Cell arrays hold at most " + std::to_string(kMaxCellValues) +
                               " values, all levels together.");
  }
  if (value.classID() != txClassCell) return;
  if (depth > kMaxCellDepth) {
    raiseFault("cellDepth",
               "Cells nest at most " + std::to_string(kMaxCellDepth) + " levels deep.");
  }
  for (std::uint64_t i = 0; i < value.numel(); ++i) {
    if (txArray const* content = value.cell(i)) visit(*content, depth + 1, seen);
  }
}

}  // namespace

void checkCellContent(txArray const& value) {
  if (value.classID() != txClassCell) return;
  std::uint64_t seen = 0;
  visit(value, 2, seen);
}

txArrayPtr cellContent(txArray const& cells, std::uint64_t index) {
  txArray const* content = cells.cell(index);
  return content ? txShare(*content) : emptyDouble();
}

void copyCell(txArray& to, std::uint64_t toIndex, txArray const& from, std::uint64_t fromIndex) {
  txArray const* content = from.cell(fromIndex);
  to.setCell(toIndex, content ? txShare(*content) : nullptr);
}

txArrayPtr wrapInCell(txArrayPtr value) {
  checkCellContent(*value);
  txArrayPtr cell = txCreateCell(Shape{1, 1});
  cell->setCell(0, std::move(value));
  return cell;
}

}  // namespace language
