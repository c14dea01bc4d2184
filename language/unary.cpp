// Operators of one operand.

#include "embedded_host/array.h"
#include "embedded_host/interrupt.h"
#include "language/cells.h"
#include "language/fault.h"
#include "language/operators.h"
#include "language/truth.h"

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
    embedded_host::each(count, [=](std::uint64_t i) { to[i] = -from[i]; });
  };
  id == txClassSingle ? fill(float()) : fill(double());
  return result;
}

txArrayPtr logicalNot(txArray const& operand) {
  txArrayPtr const truths = truthOf(operand);
  txArrayPtr result = makeUninitialized(operand.dims(), txClassLogical);
  bool const* from = std::as_const(*truths).dataAs<bool>();
  bool* to = result->dataAs<bool>();
  embedded_host::each(truths->numel(), [=](std::uint64_t i) { to[i] = !from[i]; });
  return result;
}

template <class T>
void transposeElements(T const* from, T* to, std::uint64_t rows, std::uint64_t columns) {
  for (std::uint64_t i = 0; i < rows; ++i, to += columns) {
    embedded_host::each(columns, [=](std::uint64_t j) { to[j] = from[j * rows + i]; });
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
        embedded_host::each(conjugate ? rows * columns : 0,
                            [=](std::uint64_t i) { parts[2 * i + 1] = -parts[2 * i + 1]; });
        return;
      }
    }
    transposeElements(operand.dataAs<T>(), result->dataAs<T>(), rows, columns);
  });
  return result;
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

}  // namespace language
