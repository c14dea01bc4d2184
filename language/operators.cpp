#include "language/operators.h"

#include "embedded_host/object_system.h"
#include "language/broadcast.h"
#include "language/fault.h"
#include "language/operands.h"
#include "language/strings.h"

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
T raise(T base, T exponent) {
  return std::pow(base, exponent);
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
      return with([](T x, T y) { return x / y; });
    case Operator::leftDivide:
    case Operator::elementLeftDivide:
      return with([](T x, T y) { return y / x; });
    default:
      return with([](T x, T y) { return raise(x, y); });
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
    case Operator::greaterEqual:
      return with([](T x, T y) { return key(x) >= key(y); });
    case Operator::elementAnd:
      return with([](T x, T y) { return x != T(0) && y != T(0); });
    default:
      return with([](T x, T y) { return x != T(0) || y != T(0); });
  }
}

// A negative base with a fractional exponent has a complex power.
bool powerIsComplex(txArray const& base, txArray const& exponent) {
  if (!hasElements(base.classID()) || !hasElements(exponent.classID()) ||
      isIntegerClass(base.classID()) || isIntegerClass(exponent.classID()) || base.isComplex() ||
      exponent.isComplex()) {
    return false;
  }
  Operand<double> const b(base);
  Operand<double> const e(exponent);
  return std::any_of(b.data(), b.data() + base.numel(), [](double x) { return x < 0; }) &&
         std::any_of(e.data(), e.data() + exponent.numel(),
                     [](double x) { return x != std::floor(x); });
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

}  // namespace

char const* spelling(Operator op) { return kSpelling[static_cast<std::size_t>(op)]; }

txArrayPtr applyBinary(Operator op, txArray const& left, txArray const& right) {
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
  if ((op == Operator::power || op == Operator::elementPower) && powerIsComplex(left, right)) {
    return applyBinary(op, *toComplex(left), right);
  }
  Typing const types = typing(op, left, right);
  bool const logical = types.result == txClassLogical;
  switch (types.domain) {
    case Domain::real:
      return logical ? compare<double>(op, left, right)
                     : compute<double>(op, left, right, types.result);
    case Domain::wide:
      return logical ? compare<long double>(op, left, right)
                     : compute<long double>(op, left, right, types.result);
    case Domain::single:
      return compute<float>(op, left, right, types.result);
    case Domain::complex:
      return logical ? compare<Complex>(op, left, right)
                     : compute<Complex>(op, left, right, types.result);
    default:
      return compute<ComplexSingle>(op, left, right, types.result);
  }
}

bool isTrue(txArray const& value) {
  if (!hasElements(value.classID())) {
    raiseFault("condition", "A " + describe(value) + " is neither true nor false.");
  }
  if (value.isEmpty()) return false;
  txArrayPtr const full = txToFull(value);
  std::uint64_t const perElement = full->isComplex() ? 2 : 1;
  return visitElementType(full->classID(), [&]<class T>(T) {
    T const* data = std::as_const(*full).template dataAs<T>();
    for (std::uint64_t i = 0; i < full->numel(); ++i) {
      T const re = data[i * perElement];
      T const im = data[i * perElement + perElement - 1];
      if constexpr (std::is_floating_point_v<T>) {
        if (std::isnan(re) || std::isnan(im)) {
          raiseFault("condition", "NaN is neither true nor false.", "test with isnan(x)");
        }
      }
      if (re == T(0) && im == T(0)) return false;
    }
    return true;
  });
}

}  // namespace language
