#include "embedded_host/interrupt.h"
#include "language/cells.h"
#include "language/fault.h"
#include "language/indexing.h"
#include "language/selection.h"

namespace language {

namespace {

void checkReach(txArray const& value, Subscripts const& subscripts, Shape const& extents) {
  for (std::size_t d = 0; d < subscripts.size(); ++d) {
    if (subscripts[d].reach() <= extents[d]) continue;
    std::string const index = std::to_string(subscripts[d].reach());
    bool const linear = subscripts.size() == 1;
    raiseFault(
        "bounds",
        "Index " + index + " is beyond the end: " +
            (linear ? "the array has " + elementCountText(extents[d]) + "."
                    : "dimension " + std::to_string(d + 1) + " of " + sizeText(value.dims()) +
                          " has " + std::to_string(extents[d]) + "."),
        "", subscripts[d].position());
  }
}

// A vector read with a vector keeps its own direction; otherwise one index gives its own shape.
Shape resultShape(txArray const& value, Subscripts const& subscripts, Shape const& extents) {
  Shape shape;
  if (subscripts.size() > 1) {
    for (std::size_t d = 0; d < subscripts.size(); ++d) {
      shape.push_back(subscripts[d].count(extents[d]));
    }
    return shape;
  }
  Subscript const& only = subscripts.front();
  std::uint64_t const count = only.count(extents[0]);
  if (only.whole()) return {count, 1};
  shape = only.shape();
  bool const indexIsVector = shape.size() == 2 && (shape[0] == 1 || shape[1] == 1);
  if (indexIsVector && isVector(value) && !value.isScalar()) {
    return value.dims()[0] == 1 ? Shape{1, count} : Shape{count, 1};
  }
  return shape;
}

}  // namespace

txArrayPtr readElements(txArray const& value, Subscripts const& subscripts) {
  if (subscripts.empty()) return txShare(value);
  Shape const extents = foldedExtents(value, subscripts.size());
  checkReach(value, subscripts, extents);
  if (value.classID() == txClassObject || value.classID() == txClassClassIdentifier) {
    std::uint64_t selected = 1;
    for (std::size_t d = 0; d < subscripts.size(); ++d) selected *= subscripts[d].count(extents[d]);
    if (selected != 1 || !value.isScalar()) {
      raiseFault("index", "Objects do not form arrays.", "hold them in a cell array");
    }
    return txShare(value);
  }
  if (value.isSparse()) return readElements(*txToFull(value), subscripts);
  Shape const shape = resultShape(value, subscripts, extents);
  if (subscripts.size() == 1 && subscripts.front().whole() && value.classID() != txClassString &&
      value.classID() != txClassCell) {
    return embedded_host::reshape(value, shape);
  }
  txArrayPtr result = makeBlank(value, shape);
  copyElements(*result, value, [&](auto&& copy) {
    forEachSelected(extents, subscripts, [&](std::uint64_t to, std::uint64_t from) {
      if (to % embedded_host::kBetweenLooks == 0) embedded_host::checkInterrupt();
      copy(to, from);
    });
  });
  return result;
}

std::vector<txArrayPtr> readCells(txArray const& value, Subscripts const& subscripts) {
  if (value.classID() != txClassCell) {
    raiseFault("cells", "Braces read from cell arrays, and this is a " + describe(value) + ".",
               "parentheses read elements: x(1)");
  }
  if (subscripts.empty()) raiseFault("cells", "Braces need an index.", "c{:} gives all cells");
  Shape const extents = foldedExtents(value, subscripts.size());
  checkReach(value, subscripts, extents);
  std::vector<txArrayPtr> contents;
  forEachSelected(extents, subscripts, [&](std::uint64_t, std::uint64_t from) {
    contents.push_back(cellContent(value, from));
  });
  return contents;
}

txArrayPtr makeBlank(txArray const& value, Shape const& shape) {
  switch (value.classID()) {
    case txClassCell:
      return txCreateCell(shape);
    case txClassString:
      return embedded_host::makeStrings(shape);
    default:
      return embedded_host::makeZeros(
          shape, value.classID(), value.isComplex() ? txComplexity::complex : txComplexity::real);
  }
}

}  // namespace language
