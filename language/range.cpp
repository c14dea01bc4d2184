#include "language/range.h"
#include "embedded_host/interrupt.h"

#include <algorithm>

#include "embedded_host/array.h"
#include "language/fault.h"
#include "language/operands.h"

namespace language {

namespace {

constexpr double kMostElements = 0x1p53;

[[noreturn]] void endless() {
  raiseFault("range", "This range would have no end that memory could hold.");
}

double bound(txArray const& value) {
  if (!hasElements(value.classID()) || !value.isScalar() || value.isComplex()) {
    raiseFault("range", "The bounds of a range are real numbers, not " + describe(value) + ".");
  }
  double const number = value.scalarAsDouble();
  if (std::isnan(number)) raiseFault("range", "A bound of this range is NaN.");
  return number;
}

Exact exactBound(txArray const& value) { return Operand<Exact>(*txToFull(value)).data()[0]; }

// The whole number next to the value towards `below` or above; beyond every class where the value
// is, so that sums and differences stay within 128 bits.
int128 wholeNextTo(Exact const& value, bool below) {
  constexpr int128 kFar = int128{1} << 66;
  double const rough = nearestDouble(value);
  if (!(std::fabs(rough) < 0x1p65)) return value.negative ? -kFar : kFar;
  if (value.isWhole()) {
    int128 const magnitude = static_cast<int128>(value.magnitude) << value.exponent;
    return value.negative ? -magnitude : magnitude;
  }
  return static_cast<int128>(below ? std::floor(rough) : std::ceil(rough));
}

txClassID rangeClass(txArray const& first, txArray const* step, txArray const& last) {
  txClassID const a = first.classID();
  txClassID const b = last.classID();
  if (isIntegerClass(a) && isIntegerClass(b) && a != b) {
    raiseFault("integerClasses",
               "A range has one class: it does not go from " + classText(first) + " to " +
                   classText(last) + ".",
               "convert one of the bounds");
  }
  txClassID found = txClassDouble;
  for (txArray const* value : {&first, &last, step}) {
    if (!value || isIntegerClass(found)) continue;
    bool const decides = isIntegerClass(value->classID()) || value->classID() == txClassSingle;
    if (decides) found = value->classID();
  }
  return found;
}

}  // namespace

RangeValues::RangeValues(txArray const& first, txArray const* step, txArray const& last) {
  double const from = bound(first);
  double const width = step ? bound(*step) : 1;
  double const to = bound(last);
  class_ = rangeClass(first, step, last);
  if (std::isinf(width)) raiseFault("range", "The step of this range is infinite.");
  isIntegerClass(class_) ? setIntegers(first, step, last) : setFloats(from, width, to);
}

void RangeValues::setIntegers(txArray const& first, txArray const* step, txArray const& last) {
  Exact const from = exactBound(first);
  Exact const width = step ? exactBound(*step) : exactOf(1);
  bool const isWhole = width.isWhole() && (from.isWhole() || from.kind == Exact::Kind::infinite);
  if (!isWhole) {
    raiseFault("range", "A range of " + std::string(embedded_host::builtinClassName(class_)) +
                            " starts at a whole number and goes by whole steps.");
  }
  bool const rises = !width.negative;
  visitElementType(class_, [&]<class T>(T) {
    if constexpr (std::is_integral_v<T>) {
      int128 const lowest = std::numeric_limits<T>::min();
      int128 const highest = std::numeric_limits<T>::max();
      wholeFrom_ = std::clamp(wholeNextTo(from, rises), lowest, highest);
      wholeWidth_ = wholeNextTo(width, true);
      int128 const to = std::clamp(wholeNextTo(exactBound(last), rises), lowest, highest);
      if (wholeWidth_ == 0 || (rises ? wholeFrom_ > to : wholeFrom_ < to)) return;
      int128 const count = (to - wholeFrom_) / wholeWidth_ + 1;
      if (count > static_cast<int128>(kMostElements)) endless();
      count_ = static_cast<std::uint64_t>(count);
    }
  });
}

void RangeValues::setFloats(double from, double width, double to) {
  if (width == 0 || (width > 0 ? from > to : from < to)) return;
  double const distance = to - from;
  double const steps = std::isinf(distance) ? to / width - from / width : distance / width;
  if (!(steps < kMostElements)) endless();
  // Whole numbers are what was written.
  bool const isExact = from == std::floor(from) && width == std::floor(width);
  double const eps = class_ == txClassSingle ? 0x1p-23 : 0x1p-52;
  double const size = std::max(std::fabs(from), std::fabs(to));
  double const slack = isExact ? 0 : std::min(3 * eps * (size / std::fabs(width)), 0.5);
  double const whole = std::floor(steps + slack);
  count_ = static_cast<std::uint64_t>(whole) + 1;
  from_ = from;
  width_ = width;
  last_ = steps - whole <= slack ? to : from + whole * width;
}

double RangeValues::floatAt(std::uint64_t i) const {
  std::uint64_t const left = count_ - 1 - i;
  if (i == left && i != 0) {
    double const sum = from_ + last_;
    return std::isinf(sum) ? from_ / 2 + last_ / 2 : sum / 2;
  }
  return i <= left ? from_ + static_cast<double>(i) * width_
                   : last_ - static_cast<double>(left) * width_;
}

template <class T>
T RangeValues::elementAt(std::uint64_t i) const {
  if constexpr (std::is_floating_point_v<T>) {
    return static_cast<T>(floatAt(i));
  } else {
    return static_cast<T>(wholeFrom_ + static_cast<int128>(i) * wholeWidth_);
  }
}

txArrayPtr RangeValues::at(std::uint64_t i) const {
  return visitElementType(
      class_, [&]<class T>(T) -> txArrayPtr { return embedded_host::makeScalar(elementAt<T>(i)); });
}

txArrayPtr RangeValues::all() const {
  txArrayPtr result = embedded_host::makeUninitialized(Shape{1, count_}, class_);
  visitElementType(class_, [&]<class T>(T) {
    T* out = result->dataAs<T>();
    embedded_host::each(count_, [=, this](std::uint64_t i) { out[i] = elementAt<T>(i); });
  });
  return result;
}

}  // namespace language
