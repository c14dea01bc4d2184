// Operators of one operand, ranges.

#include <algorithm>

#include "embedded_host/array.h"
#include "language/cells.h"
#include "language/fault.h"
#include "language/operators.h"

namespace language {

namespace {

using embedded_host::makeUninitialized;

[[noreturn]] void undefined(Operator op, txArray const& operand) {
  raiseFault("operands",
             std::string("'") + spelling(op) + "' is not defined for " + classText(operand) + ".");
}

txArrayPtr negate(txArray const& operand) {
  txClassID const id = operand.classID();
  if (!isFloatClass(id)) {
    txArrayPtr const number =
        isIntegerClass(id) ? txShare(operand) : convertClass(operand, txClassDouble);
    return isIntegerClass(id)
               ? applyBinary(Operator::subtract, *convertClass(*makeDouble(0), id), *number)
               : negate(*number);
  }
  txArrayPtr result = makeUninitialized(
      operand.dims(), id, operand.isComplex() ? txComplexity::complex : txComplexity::real);
  auto const fill = [&]<class T>(T) {
    T const* from = operand.dataAs<T>();
    T* to = result->dataAs<T>();
    std::uint64_t const count = operand.numel() * (operand.isComplex() ? 2 : 1);
    for (std::uint64_t i = 0; i < count; ++i) to[i] = -from[i];
  };
  id == txClassSingle ? fill(float()) : fill(double());
  return result;
}

txArrayPtr logicalNot(txArray const& operand) {
  txArrayPtr const logical = convertClass(operand, txClassLogical);
  txArrayPtr result = makeUninitialized(operand.dims(), txClassLogical);
  bool const* from = std::as_const(*logical).dataAs<bool>();
  bool* to = result->dataAs<bool>();
  for (std::uint64_t i = 0; i < logical->numel(); ++i) to[i] = !from[i];
  return result;
}

template <class T>
void transposeElements(T const* from, T* to, std::uint64_t rows, std::uint64_t columns) {
  for (std::uint64_t i = 0; i < rows; ++i) {
    for (std::uint64_t j = 0; j < columns; ++j) *to++ = from[j * rows + i];
  }
}

txArrayPtr transpose(txArray const& operand, bool conjugate) {
  if (!isMatrix(operand)) {
    raiseFault("sizes", "A " + sizeText(operand.dims()) + " array has no transpose.");
  }
  std::uint64_t const rows = operand.dims()[0];
  std::uint64_t const columns = operand.dims()[1];
  Shape const shape{columns, rows};
  if (operand.classID() == txClassCell) {
    txArrayPtr result = txCreateCell(shape);
    for (std::uint64_t i = 0, at = 0; i < rows; ++i) {
      for (std::uint64_t j = 0; j < columns; ++j, ++at)
        copyCell(*result, at, operand, j * rows + i);
    }
    return result;
  }
  if (operand.classID() == txClassString) {
    txArrayPtr result = embedded_host::makeStrings(shape);
    for (std::uint64_t i = 0, at = 0; i < rows; ++i) {
      for (std::uint64_t j = 0; j < columns; ++j, ++at) {
        embedded_host::setString(*result, at, embedded_host::stringAt(operand, j * rows + i));
      }
    }
    return result;
  }
  bool const complex = operand.isComplex();
  if ((rows == 1 || columns == 1) && !complex) return embedded_host::reshape(operand, shape);
  txArrayPtr result = makeUninitialized(shape, operand.classID(),
                                        complex ? txComplexity::complex : txComplexity::real);
  visitElementType(operand.classID(), [&]<class T>(T) {
    if constexpr (std::is_floating_point_v<T>) {
      if (complex) {
        using C = std::complex<T>;
        transposeElements(operand.dataAs<C>(), result->dataAs<C>(), rows, columns);
        T* parts = result->dataAs<T>();
        for (std::uint64_t i = 0; conjugate && i < rows * columns; ++i) {
          parts[2 * i + 1] = -parts[2 * i + 1];
        }
        return;
      }
    }
    transposeElements(operand.dataAs<T>(), result->dataAs<T>(), rows, columns);
  });
  return result;
}

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

txArrayPtr applyUnary(Operator op, txArray const& operand) {
  if (operand.isSparse()) return applyUnary(op, *txToFull(operand));
  bool const transposes = op == Operator::transpose || op == Operator::conjugateTranspose;
  bool const cells = operand.classID() == txClassCell || operand.classID() == txClassString;
  if (!hasElements(operand.classID()) && !(transposes && cells)) undefined(op, operand);
  switch (op) {
    case Operator::plus:
      return operand.isLogical() || operand.isText() ? convertClass(operand, txClassDouble)
                                                     : txShare(operand);
    case Operator::negate:
      return negate(operand);
    case Operator::logicalNot:
      return logicalNot(operand);
    default:
      return transpose(operand, op == Operator::conjugateTranspose);
  }
}

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
