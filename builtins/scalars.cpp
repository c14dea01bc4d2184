#include "builtins/scalars.h"

#include <cmath>

#include "host/tfl_rng.h"

namespace builtins {

bool isRealScalar(txArray const& array) noexcept {
  return array.isNumeric() && array.isScalar() && !array.isComplex();
}

std::optional<std::uint64_t> toCount(txArray const& array) {
  if (!isRealScalar(array)) return std::nullopt;
  if (array.classID() == txClassUint64) return *array.dataAs<std::uint64_t>();
  if (array.classID() == txClassInt64) {
    std::int64_t const value = *array.dataAs<std::int64_t>();
    if (value < 0) return std::nullopt;
    return static_cast<std::uint64_t>(value);
  }
  double const value = array.scalarAsDouble();
  if (!(value >= 0) || !std::isfinite(value) || value != std::trunc(value)) return std::nullopt;
  return tfl_rng::toUint64(value);
}

}  // namespace builtins
