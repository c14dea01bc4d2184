// Operators of 64-bit integers, with each other and with numbers of other classes.

#include "embedded_host/array.h"
#include "language/broadcast.h"
#include "language/operands.h"

namespace language {

namespace {

using embedded_host::makeUninitialized;

Exact opposite(Exact value) {
  value.negative = !value.negative;
  return value;
}

template <class T, class Element, class Op>
txArrayPtr eachPair(txArray const& left, txArray const& right, Operator op, Op each) {
  Broadcast const walk(left, right, spelling(op));
  Operand<Element> const a(left);
  Operand<Element> const b(right);
  txArrayPtr result = makeUninitialized(walk.result(), embedded_host::kClassOf<T>);
  walk.run(result->dataAs<T>(), a.data(), b.data(), each);
  return result;
}

// Integers of one class; all but quotients without detours.
template <class T>
txArrayPtr saturating(Operator op, txArray const& left, txArray const& right) {
  constexpr T kLowest = std::numeric_limits<T>::min();
  constexpr T kHighest = std::numeric_limits<T>::max();
  auto const with = [&](auto each) { return eachPair<T, T>(left, right, op, each); };
  switch (op) {
    case Operator::add:
      return with([](T x, T y) {
        T result;
        return !__builtin_add_overflow(x, y, &result) ? result : y < T(0) ? kLowest : kHighest;
      });
    case Operator::subtract:
      return with([](T x, T y) {
        T result;
        return !__builtin_sub_overflow(x, y, &result) ? result : y < T(0) ? kHighest : kLowest;
      });
    default:
      return with([](T x, T y) {
        T result;
        bool const negative = (x < T(0)) != (y < T(0));
        return !__builtin_mul_overflow(x, y, &result) ? result : negative ? kLowest : kHighest;
      });
  }
}

template <class T>
txArrayPtr compute(Operator op, txArray const& left, txArray const& right) {
  auto const with = [&](auto each) {
    return eachPair<T, Exact>(left, right, op, [&](Exact const& x, Exact const& y) {
      return each(x, y).template as<T>();
    });
  };
  bool const oneClass = left.classID() == right.classID();
  switch (op) {
    case Operator::divide:
    case Operator::elementDivide:
      return with(quotient);
    case Operator::leftDivide:
    case Operator::elementLeftDivide:
      return with([](Exact const& x, Exact const& y) { return quotient(y, x); });
    case Operator::add:
      if (oneClass) return saturating<T>(op, left, right);
      return with(sum);
    case Operator::subtract:
      if (oneClass) return saturating<T>(op, left, right);
      return with([](Exact const& x, Exact const& y) { return sum(x, opposite(y)); });
    default:
      if (oneClass) return saturating<T>(op, left, right);
      return with(product);
  }
}

}  // namespace

txArrayPtr computeWide(Operator op, txArray const& left, txArray const& right, txClassID target) {
  return target == txClassInt64 ? compute<std::int64_t>(op, left, right)
                                : compute<std::uint64_t>(op, left, right);
}

txArrayPtr compareWide(Operator op, txArray const& left, txArray const& right) {
  bool const equality = op == Operator::equal || op == Operator::notEqual;
  Broadcast const walk(left, right, spelling(op));
  Operand<Exact> const a(left, equality);
  Operand<Exact> const b(right, equality);
  txArrayPtr result = makeUninitialized(walk.result(), txClassLogical);
  auto const with = [&](auto is) {
    walk.run(result->dataAs<bool>(), a.data(), b.data(),
             [&](Exact const& x, Exact const& y) { return is(compare(x, y)); });
    return std::move(result);
  };
  switch (op) {
    case Operator::equal:
      return with([](auto order) { return order == 0; });
    case Operator::notEqual:
      return with([](auto order) { return order != 0; });
    case Operator::less:
      return with([](auto order) { return order < 0; });
    case Operator::lessEqual:
      return with([](auto order) { return order <= 0; });
    case Operator::greater:
      return with([](auto order) { return order > 0; });
    default:
      return with([](auto order) { return order >= 0; });
  }
}

}  // namespace language
