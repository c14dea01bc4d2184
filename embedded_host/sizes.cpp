// Sizes, indices and argument counts: the rules that users meet.

#include "embedded_host/sizes.h"

#include <unistd.h>

#include <cmath>
#include <limits>

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

// A size argument as a full double array.
txArrayPtr toSizes(txArray const& argument, std::size_t position) {
  txArray const* numbers = tcos::underlyingArray(argument);
  if (!numbers || !(numbers->isNumeric() || numbers->isLogical())) {
    raiseHostError("TALVOR:size:NotNumeric", position, tcos::className(argument));
  }
  if (numbers->isComplex()) raiseHostError("TALVOR:size:NotReal", position);
  return txToDouble(*numbers);
}

std::string dimensionsText(embedded_host::Dims dims) {
  std::string text;
  for (std::uint64_t d : dims) text += (text.empty() ? "" : "-by-") + std::to_string(d);
  return text;
}

double physicalBytes() {
  static double const bytes =
      static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGE_SIZE));
  return bytes;
}

}  // namespace

namespace embedded_host {

std::uint64_t countElements(Dims dims, std::size_t bytesEach) {
  // Rounded products are good enough to tell what is far too large, and they cannot overflow; a
  // dimension of 0 leaves nothing to hold, however long the others are.
  double bytes = static_cast<double>(bytesEach);
  std::uint64_t count = 1;
  for (std::uint64_t d : dims) {
    bytes *= static_cast<double>(d);
    count *= d;
  }
  if (bytes == 0) return 0;
  if (bytes > physicalBytes()) {
    constexpr double kGigabyte = 0x1p30;
    raiseHostError("TALVOR:array:SizeLimitExceeded", dimensionsText(dims),
                   std::ceil(bytes / kGigabyte), std::floor(physicalBytes() / kGigabyte));
  }
  return count;
}

}  // namespace embedded_host

std::size_t txGetDims(std::size_t nArgs, txArray const* const* args, std::uint64_t* dims,
                      std::size_t capacity) {
  auto const put = [&](std::size_t at, std::uint64_t dimension) {
    if (at < capacity) dims[at] = dimension;
  };
  if (nArgs != 1) {
    for (std::size_t i = 0; i < nArgs; ++i) {
      txArrayPtr const size = toSizes(*args[i], i + 1);
      if (!size->isScalar()) raiseHostError("TALVOR:size:NotScalar", i + 1);
      put(i, toDimension(size->scalarAsDouble(), i + 1));
    }
    // No argument at all is a scalar.
    for (std::size_t i = nArgs; i < 2; ++i) put(i, 1);
    return nArgs == 0 ? 2 : nArgs;
  }
  txArrayPtr const sizes = toSizes(*args[0], 1);
  bool const isVector =
      sizes->dims().size() == 2 && (sizes->dims()[0] == 1 || sizes->dims()[1] == 1);
  if (!isVector && !sizes->isEmpty()) raiseHostError("TALVOR:size:NotVector");
  if (sizes->numel() >= 2) {
    for (std::uint64_t i = 0; i < sizes->numel(); ++i) {
      put(i, toDimension(std::as_const(*sizes).dataAs<double>()[i], i + 1));
    }
    return sizes->numel();
  }
  std::uint64_t const side = sizes->isEmpty() ? 0 : toDimension(sizes->scalarAsDouble(), 1);
  put(0, side);
  put(1, side);
  return 2;
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
