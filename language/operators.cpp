#include "language/operators.h"

#include "embedded_host/object_system.h"
#include "language/broadcast.h"
#include "language/complex_division.h"
#include "language/fault.h"
#include "language/operands.h"
#include "language/powers.h"
#include "language/strings.h"
#include "language/truth.h"

namespace language {

namespace {

using embedded_host::makeUninitialized;

constexpr char const* kSpelling[] = {"+",  "-",  "*",  ".*", "/",  "./", "\\", ".\\", "^",
                                     ".^", "==", "~=", "<",  "<=", ">",  ">=", "&",   "|",
                                     "&&", "||", "+",  "-",  "~",  ".'", "'"};

// Stores numbers of a domain as elements of the result's class.
template <class T>
txArrayPtr store(std::vector<T> const& from, Shape const& shape, txClassID target) {
  txArrayPtr result = makeUninitialized(shape, target);
  visitElementType(target, [&]<class To>(To) {
    To* to = result->dataAs<To>();
    for (std::size_t i = 0; i < from.size(); ++i) to[i] = castElement<To>(from[i]);
  });
  return result;
}

template <class T, class Op>
txArrayPtr arithmetic(txArray const& left, txArray const& right, txClassID target, char const* name,
                      Op op) {
  Broadcast const walk(left, right, name);
  Operand<T> const a(left);
  Operand<T> const b(right);
  if constexpr (std::is_same_v<T, Complex> || std::is_same_v<T, ComplexSingle>) {
    txArrayPtr result = makeUninitialized(walk.result(), target, txComplexity::complex);
    walk.run(result->dataAs<T>(), a.data(), b.data(), op);
    return dropZeroImaginary(std::move(result));
  } else {
    txArrayPtr direct = makeUninitialized(walk.result(), target);
    if (embedded_host::kClassOf<T> == target) {
      walk.run(direct->template dataAs<T>(), a.data(), b.data(), op);
      return direct;
    }
    std::vector<T> computed(direct->numel());
    walk.run(computed.data(), a.data(), b.data(), op);
    return store(computed, walk.result(), target);
  }
}

template <class T, class Op>
txArrayPtr comparison(txArray const& left, txArray const& right, char const* name, Op op) {
  Broadcast const walk(left, right, name);
  Operand<T> const a(left);
  Operand<T> const b(right);
  txArrayPtr result = makeUninitialized(walk.result(), txClassLogical);
  walk.run(result->dataAs<bool>(), a.data(), b.data(), op);
  return result;
}

template <class T>
T quotient(T x, T y) {
  if constexpr (std::is_floating_point_v<T>) {
    return x / y;
  } else {
    return divide(x, y);
  }
}

template <class T>
txArrayPtr compute(Operator op, txArray const& a, txArray const& b, txClassID target) {
  char const* name = spelling(op);
  auto const with = [&](auto f) { return arithmetic<T>(a, b, target, name, f); };
  switch (op) {
    case Operator::add:
      return with([](T x, T y) { return x + y; });
    case Operator::subtract:
      return with([](T x, T y) { return x - y; });
    case Operator::multiply:
    case Operator::elementMultiply:
      return with([](T x, T y) { return x * y; });
    case Operator::divide:
    case Operator::elementDivide:
      return with([](T x, T y) { return quotient(x, y); });
    default:
      return with([](T x, T y) { return quotient(y, x); });
  }
}

// Complex numbers are ordered by their real parts.
template <class T>
auto key(T const& x) {
  if constexpr (std::is_same_v<T, Complex>) {
    return x.real();
  } else {
    return x;
  }
}

template <class T>
txArrayPtr compare(Operator op, txArray const& a, txArray const& b) {
  char const* name = spelling(op);
  auto const with = [&](auto f) { return comparison<T>(a, b, name, f); };
  switch (op) {
    case Operator::equal:
      return with([](T x, T y) { return x == y; });
    case Operator::notEqual:
      return with([](T x, T y) { return x != y; });
    case Operator::less:
      return with([](T x, T y) { return key(x) < key(y); });
    case Operator::lessEqual:
      return with([](T x, T y) { return key(x) <= key(y); });
    case Operator::greater:
      return with([](T x, T y) { return key(x) > key(y); });
    default:
      return with([](T x, T y) { return key(x) >= key(y); });
  }
}

txArrayPtr combineTruths(Operator op, txArray const& left, txArray const& right) {
  Broadcast const walk(left, right, spelling(op));
  txArrayPtr const a = truthOf(left);
  txArrayPtr const b = truthOf(right);
  txArrayPtr result = makeUninitialized(walk.result(), txClassLogical);
  bool const* x = std::as_const(*a).dataAs<bool>();
  bool const* y = std::as_const(*b).dataAs<bool>();
  if (op == Operator::elementAnd) {
    walk.run(result->dataAs<bool>(), x, y, [](bool p, bool q) { return p && q; });
  } else {
    walk.run(result->dataAs<bool>(), x, y, [](bool p, bool q) { return p || q; });
  }
  return result;
}

void refuseMatrixOperator(Operator op, txArray const& left, txArray const& right) {
  bool const division = op == Operator::divide       ? !right.isScalar()
                        : op == Operator::leftDivide ? !left.isScalar()
                                                     : false;
  bool const matrixPower = op == Operator::power && (!left.isScalar() || !right.isScalar());
  if (division || matrixPower) {
    raiseFault("operands",
               std::string("'") + spelling(op) + "' of whole matrices is not part of the language.",
               std::string("element by element write .") + spelling(op));
  }
}

bool isPlainNumber(txArray const& value) {
  return value.classID() == txClassDouble && value.isScalar() && !value.isComplex() &&
         !value.isSparse();
}

// What most turns of a loop compute; null for an operator that is left to the general way.
txArrayPtr ofPlainNumbers(Operator op, double x, double y) {
  switch (op) {
    case Operator::add:
      return makeDouble(x + y);
    case Operator::subtract:
      return makeDouble(x - y);
    case Operator::multiply:
    case Operator::elementMultiply:
      return makeDouble(x * y);
    case Operator::divide:
    case Operator::elementDivide:
      return makeDouble(x / y);
    case Operator::equal:
      return txCreateLogical(x == y);
    case Operator::notEqual:
      return txCreateLogical(x != y);
    case Operator::less:
      return txCreateLogical(x < y);
    case Operator::lessEqual:
      return txCreateLogical(x <= y);
    case Operator::greater:
      return txCreateLogical(x > y);
    case Operator::greaterEqual:
      return txCreateLogical(x >= y);
    default:
      return nullptr;
  }
}

}  // namespace

char const* spelling(Operator op) { return kSpelling[static_cast<std::size_t>(op)]; }

txArrayPtr applyBinary(Operator op, txArray const& left, txArray const& right) {
  if (isPlainNumber(left) && isPlainNumber(right)) {
    if (txArrayPtr result = ofPlainNumbers(op, *left.dataAs<double>(), *right.dataAs<double>()))
      return result;
  }
  if (left.isSparse() || right.isSparse()) {
    return applyBinary(op, *txToFull(left), *txToFull(right));
  }
  if (left.classID() == txClassString || right.classID() == txClassString) {
    return applyToStrings(op, left, right);
  }
  if (left.classID() == txClassObject && right.classID() == txClassObject &&
      (op == Operator::equal || op == Operator::notEqual)) {
    return txCreateLogical(embedded_host::sameObject(left, right) == (op == Operator::equal));
  }
  bool const scalars = left.isScalar() || right.isScalar();
  if (op == Operator::multiply && !scalars) return matrixProduct(left, right);
  refuseMatrixOperator(op, left, right);
  if (op == Operator::power || op == Operator::elementPower) return applyPower(op, left, right);
  Typing const types = typing(op, left, right);
  if (op == Operator::elementAnd || op == Operator::elementOr) {
    return combineTruths(op, left, right);
  }
  bool const compares = types.result == txClassLogical;
  switch (types.domain) {
    case Domain::real:
      return compares ? compare<double>(op, left, right)
                      : compute<double>(op, left, right, types.result);
    case Domain::wide:
      return compares ? compareWide(op, left, right) : computeWide(op, left, right, types.result);
    case Domain::single:
      return compute<float>(op, left, right, types.result);
    case Domain::complex:
      return compares ? compare<Complex>(op, left, right)
                      : compute<Complex>(op, left, right, types.result);
    default:
      return compute<ComplexSingle>(op, left, right, types.result);
  }
}

}  // namespace language
