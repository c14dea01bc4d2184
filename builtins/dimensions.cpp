#include "builtins/dimensions.h"

#include <algorithm>

#include "errors/keys.h"

namespace builtins {

Dimensions::Dimensions(std::span<txArray const* const> sizes) : Dimensions(1, 1) {
  if (sizes.empty()) return;
  count_ = txGetDims(sizes.size(), sizes.data(), inPlace_.data(), kInPlace);
  if (count_ <= kInPlace) return;
  heap_ = txMakeBuffer<std::uint64_t>(count_);
  txGetDims(sizes.size(), sizes.data(), heap_.get(), count_);
}

std::uint64_t toDimension(double size) {
  if (size < 0) return 0;
  std::uint64_t const whole = txCheckIndex(size);
  if (static_cast<double>(whole) != size) errors::raise(TALVOR::NonIntegerInput());
  return whole;
}

Dimensions square(double n) {
  std::uint64_t const side = toDimension(n);
  return {side, side};
}

Dimensions rectangle(double m, double n) {
  std::uint64_t const rows = toDimension(m);
  return {rows, toDimension(n)};
}

Dimensions dimensionsFrom(matrix::typed_row_vector<double> const& sizes) {
  txArrayPtr const row =
      txCreateUninitialized(std::array<std::uint64_t, 2>{1, sizes.size()}, txClassDouble);
  std::copy_n(sizes.data(), sizes.size(), row->dataAs<double>());
  txArray const* const argument = row.get();
  return Dimensions({&argument, 1});
}

}  // namespace builtins
