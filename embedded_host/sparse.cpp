// Sparse arrays, compressed by columns.

#include "embedded_host/array.h"
#include "embedded_host/array_impl.h"
#include "embedded_host/messages.h"

namespace embedded_host {

namespace {

bool isWellFormed(std::uint64_t rows, std::uint64_t columns, std::size_t perEntry,
                  SparseView const& view) {
  auto const& starts = view.columnStarts;
  if (starts.size() != columns + 1 || starts[0] != 0 || starts[columns] != view.rowIndices.size() ||
      view.values.size() != view.rowIndices.size() * perEntry) {
    return false;
  }
  for (std::uint64_t c = 0; c < columns; ++c) {
    if (starts[c] > starts[c + 1] || starts[c + 1] > view.rowIndices.size()) return false;
    for (std::uint64_t k = starts[c]; k < starts[c + 1]; ++k) {
      if (view.rowIndices[k] >= rows) return false;
      if (k > starts[c] && view.rowIndices[k] <= view.rowIndices[k - 1]) return false;
    }
  }
  return true;
}

}  // namespace

txArrayPtr makeSparse(std::uint64_t rows, std::uint64_t columns, txClassID classID,
                      txComplexity complexity, std::span<const std::uint64_t> columnStarts,
                      std::span<const std::uint64_t> rowIndices, std::span<const double> values) {
  bool const complex = complexity == txComplexity::complex;
  bool const classFits = classID == txClassDouble || (classID == txClassLogical && !complex);
  if (!classFits ||
      !isWellFormed(rows, columns, complex ? 2 : 1, {columnStarts, rowIndices, values})) {
    raiseHostError("TALVOR:sparse:Structure");
  }
  SparseElements elements;
  elements.columnStarts.assign(columnStarts.begin(), columnStarts.end());
  elements.rowIndices.assign(rowIndices.begin(), rowIndices.end());
  elements.values.assign(values.begin(), values.end());
  return makeImpl(classID, std::array<std::uint64_t, 2>{rows, columns},
                  Shared<SparseElements>::make(std::move(elements)), complexity);
}

txArrayPtr toSparse(txArray const& full) {
  if (full.isSparse()) return txShare(full);
  bool const isDouble = full.classID() == txClassDouble;
  if ((!isDouble && !full.isLogical()) || full.dims().size() != 2) {
    raiseHostError("TALVOR:sparse:Structure");
  }
  std::uint64_t const rows = full.dims()[0], columns = full.dims()[1];
  std::size_t const perEntry = full.isComplex() ? 2 : 1;
  auto const part = [&](std::uint64_t at) {
    return isDouble ? full.dataAs<double>()[at] : static_cast<double>(full.dataAs<bool>()[at]);
  };
  SparseElements elements;
  elements.columnStarts.push_back(0);
  for (std::uint64_t c = 0; c < columns; ++c) {
    for (std::uint64_t r = 0; r < rows; ++r) {
      std::uint64_t const at = (c * rows + r) * perEntry;
      if (part(at) == 0 && part(at + perEntry - 1) == 0) continue;
      elements.rowIndices.push_back(r);
      for (std::size_t p = 0; p < perEntry; ++p) elements.values.push_back(part(at + p));
    }
    elements.columnStarts.push_back(elements.rowIndices.size());
  }
  return makeImpl(full.classID(), full.dims(), Shared<SparseElements>::make(std::move(elements)),
                  static_cast<txComplexity>(full.isComplex()));
}

SparseView sparseView(txArray const& array) {
  auto const* sparse = impl(array).shares<SparseElements>();
  if (!sparse) raiseHostError("TALVOR:sparse:NotSparse");
  return {(*sparse)->columnStarts, (*sparse)->rowIndices, (*sparse)->values};
}

}  // namespace embedded_host

txArrayPtr txToFull(txArray const& array) {
  using namespace embedded_host;
  if (!array.isSparse()) return txShare(array);
  txArrayPtr full =
      makeZeros(array.dims(), array.classID(), static_cast<txComplexity>(array.isComplex()));
  SparseView const sparse = sparseView(array);
  std::uint64_t const rows = array.dims()[0];
  for (std::uint64_t c = 0; c < array.dims()[1]; ++c) {
    for (std::uint64_t k = sparse.columnStarts[c]; k < sparse.columnStarts[c + 1]; ++k) {
      std::uint64_t const at = c * rows + sparse.rowIndices[k];
      if (array.isLogical()) {
        full->dataAs<bool>()[at] = sparse.values[k] != 0;
      } else if (array.isComplex()) {
        full->dataAs<double>()[2 * at] = sparse.values[2 * k];
        full->dataAs<double>()[2 * at + 1] = sparse.values[2 * k + 1];
      } else {
        full->dataAs<double>()[at] = sparse.values[k];
      }
    }
  }
  return full;
}
