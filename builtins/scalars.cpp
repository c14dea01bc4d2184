#include "builtins/scalars.h"

#include "host/tfl_rng.h"

namespace builtins {

bool isRealScalar(txArray const& array) noexcept {
  return array.isNumeric() && array.isScalar() && !array.isComplex();
}

std::optional<std::uint64_t> toCount(txArray const& array) {
  if (!isRealScalar(array)) return std::nullopt;
  if (array.classID() == txClassUint64) return tfl_rng::toCount(*array.dataAs<std::uint64_t>());
  if (array.classID() == txClassInt64) return tfl_rng::toCount(*array.dataAs<std::int64_t>());
  return tfl_rng::toCount(array.scalarAsDouble());
}

}  // namespace builtins
