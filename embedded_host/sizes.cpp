// Sizes, indices and argument counts: the rules that users meet.

#include "embedded_host/sizes.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "embedded_host/messages.h"
#include "host/messages.h"
#include "host/tcos.h"
#include "host/tx_array.h"

namespace {

using embedded_host::raiseHostError;

// From here on not every whole number is a double.
constexpr double kWholeLimit = 0x1p53;
// No dimension is longer; more than any machine can address.
constexpr double kDimensionLimit = 0x1p48;

// The dimension that a number means. `position` counts the size arguments, or the elements of the
// size vector, from 1.
std::uint64_t toDimension(double value, std::size_t position) {
  if (!std::isfinite(value)) raiseHostError("TALVOR:size:NotFinite", position, value);
  if (value != std::trunc(value)) raiseHostError("TALVOR:size:NotWhole", position, value);
  if (value >= kDimensionLimit) raiseHostError("TALVOR:size:TooLarge", position, value);
  return value > 0 ? static_cast<std::uint64_t>(value) : 0;
}

// The numbers of a size argument: real, numeric or logical.
txArray const& sizesOf(txArray const& argument, std::size_t position) {
  txArray const* numbers = tcos::underlyingArray(argument);
  if (!numbers || !(numbers->isNumeric() || numbers->isLogical())) {
    raiseHostError("TALVOR:size:NotNumeric", position, tcos::className(argument));
  }
  if (numbers->isComplex()) raiseHostError("TALVOR:size:NotReal", position);
  return *numbers;
}

std::string dimensionsText(embedded_host::Dims dims) {
  std::string text;
  for (std::uint64_t d : dims) text += (text.empty() ? "" : "-by-") + std::to_string(d);
  return text;
}

// What an array may take at most: the machine's memory, or what an address reaches of it.
std::uint64_t mostBytes() {
  static std::uint64_t const bytes =
      std::min<std::uint64_t>(static_cast<std::uint64_t>(sysconf(_SC_PHYS_PAGES)) *
                                  static_cast<std::uint64_t>(sysconf(_SC_PAGE_SIZE)),
                              PTRDIFF_MAX);
  return bytes;
}

}  // namespace

namespace embedded_host {

std::uint64_t countElements(Dims dims, std::size_t bytesEach) {
  std::uint64_t count = 1, bytes;
  bool tooMany = false;
  for (std::uint64_t d : dims) tooMany |= __builtin_mul_overflow(count, d, &count);
  tooMany |= __builtin_mul_overflow(count, bytesEach, &bytes);
  if (!tooMany && bytes <= mostBytes()) return count;
  // A dimension of 0 leaves nothing to hold, however long the others are.
  if (std::find(dims.begin(), dims.end(), 0u) != dims.end()) return 0;
  constexpr double kGigabyte = 0x1p30;
  double gigabytes = static_cast<double>(bytesEach) / kGigabyte;
  for (std::uint64_t d : dims) gigabytes *= static_cast<double>(d);
  raiseHostError("TALVOR:array:SizeLimitExceeded", dimensionsText(dims), std::ceil(gigabytes),
                 std::floor(static_cast<double>(mostBytes()) / kGigabyte));
}

}  // namespace embedded_host

std::size_t txGetDims(std::size_t nArgs, txArray const* const* args, std::uint64_t* dims,
                      std::size_t capacity) {
  auto const put = [&](std::size_t at, std::uint64_t dimension) {
    if (at < capacity) dims[at] = dimension;
  };
  if (nArgs != 1) {
    for (std::size_t i = 0; i < nArgs; ++i) {
      txArray const& size = sizesOf(*args[i], i + 1);
      if (!size.isScalar()) raiseHostError("TALVOR:size:NotScalar", i + 1);
      put(i, toDimension(size.scalarAsDouble(), i + 1));
    }
    // No argument at all is a scalar.
    for (std::size_t i = nArgs; i < 2; ++i) put(i, 1);
    return nArgs == 0 ? 2 : nArgs;
  }
  txArray const& sizes = sizesOf(*args[0], 1);
  if (sizes.numel() < 2) {
    std::uint64_t const side = sizes.isEmpty() ? 0 : toDimension(sizes.scalarAsDouble(), 1);
    put(0, side);
    put(1, side);
    return 2;
  }
  bool const isVector = sizes.dims().size() == 2 && (sizes.dims()[0] == 1 || sizes.dims()[1] == 1);
  if (!isVector) raiseHostError("TALVOR:size:NotVector");
  txArrayPtr const values = txToDouble(sizes);
  for (std::uint64_t i = 0; i < sizes.numel(); ++i) {
    put(i, toDimension(std::as_const(*values).dataAs<double>()[i], i + 1));
  }
  return sizes.numel();
}

std::uint64_t txCheckIndex(double value) {
  if (std::isnan(value)) raiseHostError("TALVOR:index:NaN");
  if (value < 0) raiseHostError("TALVOR:index:Negative", value);
  if (value >= kWholeLimit) raiseHostError("TALVOR:index:TooLarge", value);
  return static_cast<std::uint64_t>(value);
}

std::uint64_t txArgMustBeIndices(txArray const& array, int position) {
  txArray const* number = tcos::underlyingArray(array);
  if (!number || !(number->isNumeric() || number->isLogical()) || !number->isScalar() ||
      number->isComplex()) {
    raiseHostError("TALVOR:index:NotIndex", position);
  }
  double const value = number->scalarAsDouble();
  if (!(value >= 0) || value != std::trunc(value)) {
    raiseHostError("TALVOR:index:NotIndex", position);
  }
  return txCheckIndex(value);
}

namespace matrix::detail {
void error_maxlhs() { raiseHostError("TALVOR:maxlhs"); }
void error_maxrhs() { raiseHostError("TALVOR:maxrhs"); }
void error_minrhs() { raiseHostError("TALVOR:minrhs"); }
}  // namespace matrix::detail
