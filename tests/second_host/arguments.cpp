// Sizes, indices, counts of arguments and texts: the rules that this host's users meet.

#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/messages.h"
#include "host/strings.h"
#include "tests/second_host/value.h"

namespace {

using second_host::raise;

// From here on not every whole number is a double.
constexpr double kWholeLimit = 0x1p53;

std::uint64_t toDimension(double value) {
  if (!std::isfinite(value)) raise("TALVOR:size:NotFinite", {value});
  if (value != std::trunc(value)) raise("TALVOR:size:NotWhole", {value});
  if (value >= kWholeLimit) raise("TALVOR:size:TooLarge", {value});
  return value > 0 ? static_cast<std::uint64_t>(value) : 0;
}

void checkNumbers(txArray const& sizes) {
  if (!sizes.isNumeric() && !sizes.isLogical()) raise("TALVOR:size:NotNumeric");
  if (sizes.isComplex()) raise("TALVOR:size:NotReal");
}

}  // namespace

std::size_t txGetDims(std::size_t nArgs, txArray const* const* args, std::uint64_t* dims,
                      std::size_t capacity) {
  std::vector<std::uint64_t> all;
  if (nArgs == 1) {
    checkNumbers(*args[0]);
    auto const extents = args[0]->dims();
    if (!args[0]->isEmpty() && (extents.size() > 2 || (extents[0] != 1 && extents[1] != 1)))
      raise("TALVOR:size:NotVector");
    txArrayPtr const sizes = txToDouble(*args[0]);
    std::span const numbers(sizes->dataAs<double>(), sizes->numel());
    std::ranges::transform(numbers, std::back_inserter(all), toDimension);
    if (all.empty()) all.push_back(0);
    if (all.size() == 1) all.push_back(all[0]);
  } else {
    for (txArray const* size : std::span(args, nArgs)) {
      checkNumbers(*size);
      if (!size->isScalar()) raise("TALVOR:size:NotScalar");
      all.push_back(toDimension(size->scalarAsDouble()));
    }
    all.resize(std::max<std::size_t>(all.size(), 2), 1);
  }
  std::copy_n(all.begin(), std::min(capacity, all.size()), dims);
  return all.size();
}

std::uint64_t txCheckIndex(double value) {
  if (std::isnan(value)) raise("TALVOR:index:NaN");
  if (value < 0) raise("TALVOR:index:Negative", {value});
  if (value >= kWholeLimit) raise("TALVOR:index:TooLarge", {value});
  return static_cast<std::uint64_t>(value);
}

std::uint64_t txArgMustBeIndices(txArray const& array, int /*position*/) {
  bool const isNumber = array.isNumeric() || array.isLogical();
  double const value =
      isNumber && array.isScalar() && !array.isComplex() ? array.scalarAsDouble() : std::nan("");
  if (!(value >= 0) || value != std::trunc(value)) raise("TALVOR:index:NotIndex");
  return txCheckIndex(value);
}

namespace matrix::detail {
void error_maxlhs() { raise("TALVOR:maxlhs"); }
void error_maxrhs() { raise("TALVOR:maxrhs"); }
void error_minrhs() { raise("TALVOR:minrhs"); }
}  // namespace matrix::detail

void utStrncpy(char* target, char const* source, std::size_t limit) noexcept {
  std::size_t const length = source ? strnlen(source, limit) : 0;
  std::copy_n(source, length, target);
  target[length] = '\0';
}

std::string utToAscii(std::u16string_view text) {
  if (std::ranges::any_of(text, [](char16_t unit) { return unit > 127; }))
    raise("TALVOR:string:NotAscii");
  return {text.begin(), text.end()};
}
