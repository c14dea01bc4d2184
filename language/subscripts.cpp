#include <algorithm>

#include "embedded_host/interrupt.h"
#include "language/fault.h"
#include "language/indexing.h"
#include "language/strings.h"

namespace language {

namespace {

[[noreturn]] void badIndex(std::string const& what, int position) {
  raiseFault("index", what, "indices are whole numbers from 1 up, a logical mask, or :", position);
}

}  // namespace

Subscript::Subscript(txArray const* index, int position) : whole_(!index), position_(position) {
  if (!index) return;
  if (isScalarText(*index) && utf8Of(*index) == ":") {
    whole_ = true;
    return;
  }
  if (!hasElements(index->classID()) || index->isComplex()) {
    badIndex("A " + describe(*index) + " is no index.", position);
  }
  txArrayPtr const full = txToFull(*index);
  std::uint64_t const count = full->numel();
  if (full->isLogical()) {
    bool const* mask = std::as_const(*full).dataAs<bool>();
    embedded_host::each(count, [&](std::uint64_t i) {
      if (mask[i]) at_.push_back(i);
    });
    if (!at_.empty()) reach_ = at_.back() + 1;
    bool const row = isMatrix(*full) && full->dims()[0] == 1 && full->dims()[1] != 1;
    shape_ = row ? Shape{1, at_.size()} : Shape{at_.size(), 1};
  } else {
    at_.reserve(count);
    visitElementType(full->classID(), [&]<class T>(T) {
      T const* from = std::as_const(*full).template dataAs<T>();
      embedded_host::each(count, [&](std::uint64_t i) {
        bool whole = from[i] >= T(1);
        if constexpr (std::is_floating_point_v<T>) {
          whole = whole && from[i] == std::floor(from[i]) && from[i] < T(0x1p63);
        }
        if (!whole) {
          badIndex(numberText(static_cast<double>(from[i]), 15) + " is no index.", position);
        }
        at_.push_back(static_cast<std::uint64_t>(from[i]) - 1);
        reach_ = std::max(reach_, at_.back() + 1);
      });
    });
    shape_ = shapeOf(*full);
  }
}

Shape foldedExtents(txArray const& value, std::size_t count) {
  return foldedExtents(value.dims(), count);
}

Shape foldedExtents(Dims dims, std::size_t count) {
  Shape extents(count, 1);
  for (std::size_t d = 0; d < dims.size(); ++d) {
    if (d < count) {
      extents[d] = dims[d];
    } else {
      extents[count - 1] *= dims[d];
    }
  }
  return extents;
}

}  // namespace language
