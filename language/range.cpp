#include <algorithm>

#include "embedded_host/array.h"
#include "language/fault.h"
#include "language/operators.h"

namespace language {

namespace {

using embedded_host::makeUninitialized;

// A scalar as a bound of a range.
double bound(txArray const& value) {
  if (!hasElements(value.classID()) || !value.isScalar() || value.isComplex()) {
    raiseFault("range", "The bounds of a range are real numbers, not " + describe(value) + ".");
  }
  return value.scalarAsDouble();
}

std::int64_t exactBound(txArray const& value, txClassID target) {
  txArrayPtr const whole = convertClass(value, target);
  return visitElementType(target, [&]<class T>(T) {
    return static_cast<std::int64_t>(std::as_const(*whole).template dataAs<T>()[0]);
  });
}

// Ranges of 64-bit integers count in integers; all others in doubles.
txArrayPtr wideRange(txArray const& first, txArray const* step, txArray const& last,
                     txClassID target) {
  std::int64_t const width = step ? exactBound(*step, txClassInt64) : 1;
  txArrayPtr const low = convertClass(first, target);
  txArrayPtr const high = convertClass(last, target);
  auto const build = [&]<class T>(T) {
    __int128 const from = std::as_const(*low).template dataAs<T>()[0];
    __int128 const to = std::as_const(*high).template dataAs<T>()[0];
    bool const empty = width == 0 || (width > 0 ? from > to : from < to);
    auto const count = empty ? 0 : static_cast<std::uint64_t>((to - from) / width) + 1;
    txArrayPtr result = makeUninitialized(Shape{1, count}, target);
    T* out = result->template dataAs<T>();
    for (std::uint64_t i = 0; i < count; ++i) {
      out[i] = static_cast<T>(from + static_cast<__int128>(i) * width);
    }
    return result;
  };
  return target == txClassInt64 ? build(std::int64_t()) : build(std::uint64_t());
}

}  // namespace

txArrayPtr makeRange(txArray const& first, txArray const* step, txArray const& last) {
  double const from = bound(first);
  double const width = step ? bound(*step) : 1;
  double const to = bound(last);
  txClassID target = txClassDouble;
  for (txArray const* value : {&first, step, &last}) {
    if (!value) continue;
    if (isIntegerClass(value->classID())) target = value->classID();
    if (value->classID() == txClassSingle && target == txClassDouble) target = txClassSingle;
  }
  if (is64Bit(target)) return wideRange(first, step, last, target);
  if (std::isnan(from) || std::isnan(width) || std::isnan(to)) {
    raiseFault("range", "A bound of this range is NaN.");
  }
  if (width == 0 || (width > 0 ? from > to : from < to)) {
    return makeUninitialized(Shape{1, 0}, target);
  }
  // A last step that rounding alone keeps from the end is taken.
  double const steps = std::floor((to - from) / width * (1 + 0x1p-51) + 0x1p-50);
  if (!(steps < 0x1p53)) {
    raiseFault("range", "This range would have no end that memory could hold.");
  }
  auto const count = static_cast<std::uint64_t>(steps) + 1;
  txArrayPtr result = makeUninitialized(Shape{1, count}, target);
  visitElementType(target, [&]<class T>(T) {
    T* out = result->template dataAs<T>();
    for (std::uint64_t i = 0; i < count; ++i) {
      double const value = from + static_cast<double>(i) * width;
      out[i] = castElement<T>(width > 0 ? std::min(value, to) : std::max(value, to));
    }
  });
  return result;
}

}  // namespace language
