#include "language/operands.h"

#include "language/fault.h"

namespace language {

namespace {

[[noreturn]] void undefined(Operator op, txArray const& left, txArray const& right) {
  raiseFault("operands", std::string("'") + spelling(op) + "' is not defined for " +
                             classText(left) + " and " + classText(right) + ".");
}

bool isComparison(Operator op) { return op >= Operator::equal && op <= Operator::greaterEqual; }
bool isLogic(Operator op) { return op >= Operator::elementAnd && op <= Operator::orElse; }

}  // namespace

Typing typing(Operator op, txArray const& left, txArray const& right) {
  txClassID const a = left.classID();
  txClassID const b = right.classID();
  if (!hasElements(a) || !hasElements(b)) undefined(op, left, right);
  bool const anyComplex = left.isComplex() || right.isComplex();
  if (isComparison(op) || isLogic(op)) {
    if (is64Bit(a) || is64Bit(b)) return {Domain::wide, txClassLogical};
    return {anyComplex ? Domain::complex : Domain::real, txClassLogical};
  }
  if (isIntegerClass(a) || isIntegerClass(b)) {
    if (anyComplex) undefined(op, left, right);
    if (isIntegerClass(a) && isIntegerClass(b) && a != b) {
      raiseFault("integerClasses",
                 "Integers of different classes (" + classText(left) + " and " + classText(right) +
                     ") do not mix.",
                 "convert one of them, for example double(x)");
    }
    txClassID const result = isIntegerClass(a) ? a : b;
    return {is64Bit(result) ? Domain::wide : Domain::real, result};
  }
  bool const single = a == txClassSingle || b == txClassSingle;
  if (single) return {anyComplex ? Domain::complexSingle : Domain::single, txClassSingle};
  return {anyComplex ? Domain::complex : Domain::real, txClassDouble};
}

}  // namespace language
