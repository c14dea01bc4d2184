#include "builtins/randperm_arguments.h"

#include <cmath>

#include "host/tfl_rng.h"

namespace builtins {
namespace {

constexpr double kTooManyToTellApart = 0x1p53;

double readScalar(PermutationErrors const& errors, txArray const& array, int position) {
  if (!array.isNumeric() || !array.isScalar() || array.isComplex()) errors.inputType(position);
  return array.scalarAsDouble();
}

void checkCount(PermutationErrors const& errors, double count, int position) {
  bool const whole = std::fabs(count) >= tfl_rng::kAllIntegral || count == std::trunc(count);
  if (!(count >= 0) || !whole) errors.inputType(position);
}

double checkTotal(PermutationErrors const& errors, double n, int position) {
  checkCount(errors, n, position);
  if (n >= kTooManyToTellApart) errors.inputNTooLarge(position);
  return n;
}

std::uint64_t checkSelected(PermutationErrors const& errors, double k, double n, int position) {
  checkCount(errors, k, position);
  if (k > n) errors.inputKTooLarge(position);
  return tfl_rng::toUint64(k);
}

}  // namespace

std::uint64_t parsePermutationLength(txArray const& n, int position) {
  txArrayPtr const asDouble = txToDouble(n);
  return txArgMustBeIndices(*asDouble, position);
}

Selection parseSelection(PermutationErrors const& errors, txArray const& n, txArray const& k,
                         int position) {
  double const total = checkTotal(errors, readScalar(errors, n, position), position);
  double const selected = readScalar(errors, k, position + 1);
  return {total, checkSelected(errors, selected, total, position + 1)};
}

Selection checkSelection(PermutationErrors const& errors, double n, double k, int position) {
  double const total = checkTotal(errors, n, position);
  return {total, checkSelected(errors, k, total, position + 1)};
}

}  // namespace builtins
