// Medians, variances, smallest and largest values.

#include <algorithm>
#include <numeric>

#include "embedded_host/array.h"
#include "embedded_host/interrupt.h"
#include "host/allocator.h"
#include "language/broadcast.h"
#include "language/fault.h"
#include "language/functions.h"
#include "language/lines.h"
#include "language/operands.h"

namespace language {

namespace {

using embedded_host::each;
using embedded_host::makeUninitialized;

txArrayPtr realFloats(Call const& call) {
  txArrayPtr value = floatArgument(call[0], 1);
  if (value->isComplex()) raiseFault("class", "This function takes real numbers.", "", 1);
  return value;
}

// var(x), var(x,1) for the mean of squares instead of n-1, var(x,w,dimension). Two passes, so that
// a large mean costs no digits.
template <bool root>
void spread(Call& call) {
  double const weight = call.size() >= 2 && !call[1].isEmpty() ? numberArgument(call[1], 2) : 0;
  if (weight != 0 && weight != 1) {
    raiseFault("option", "There is no such weight.", "0 divides by n-1, 1 by n", 2);
  }
  bool const population = weight == 1;
  Reduced const of = reduced(call, 2, realFloats(call));
  Lines const lines(*of.value, of.dimension);
  txArrayPtr result = makeUninitialized(lines.shapeWith(1), of.value->classID());
  auto const run = [&]<class T>(T) {
    T const* from = std::as_const(*of.value).template dataAs<T>();
    T* to = result->template dataAs<T>();
    double const n = static_cast<double>(lines.length());
    lines.forEach(lines.length(), [&](std::uint64_t line, std::uint64_t first) {
      double total = 0;
      double squares = 0;
      each(lines.length(), [&](std::uint64_t i) { total += from[first + i * lines.stride()]; });
      double const middle = total / n;
      each(lines.length(), [&](std::uint64_t i) {
        double const d = from[first + i * lines.stride()] - middle;
        squares += d * d;
      });
      double const variance = n == 0 ? NAN : n == 1 ? squares : squares / (population ? n : n - 1);
      to[line] = static_cast<T>(root ? std::sqrt(variance) : variance);
    });
  };
  of.value->classID() == txClassSingle ? run(float()) : run(double());
  call.give(std::move(result));
}

// The array in the class of the result. A NaN, which is never better, becomes the integer that is
// better than none.
template <auto better>
txArrayPtr asCandidates(txArray const& value, txClassID target) {
  txArrayPtr result = convertClass(value, target);
  if (!isFloatClass(value.classID()) || !isIntegerClass(target)) return result;
  txArrayPtr const doubles = convertClass(value, txClassDouble);
  double const* from = std::as_const(*doubles).dataAs<double>();
  visitElementType(target, [&]<class T>(T) {
    T* to = result->dataAs<T>();
    T const worst = better(0, 1) ? std::numeric_limits<T>::max() : std::numeric_limits<T>::min();
    each(value.numel(), [=](std::uint64_t i) {
      if (std::isnan(from[i])) to[i] = worst;
    });
  });
  return result;
}

template <auto better>
void extremeOfTwo(Call& call) {
  if (call.size() == 3) {
    raiseFault("option", "Two arrays are compared element by element, without a dimension.", "", 3);
  }
  txArrayPtr const a = elementsArgument(call[0], 1);
  txArrayPtr const b = elementsArgument(call[1], 2);
  txClassID const id = typing(Operator::add, *a, *b).result;
  if (a->isComplex() || b->isComplex()) {
    raiseFault("class", "This function takes real numbers.", "", a->isComplex() ? 1 : 2);
  }
  Broadcast const walk(*a, *b, "min or max");
  txArrayPtr const left = asCandidates<better>(*a, id);
  txArrayPtr const right = asCandidates<better>(*b, id);
  txArrayPtr result = makeUninitialized(walk.result(), id);
  visitElementType(id, [&]<class T>(T) {
    walk.run(result->dataAs<T>(), std::as_const(*left).template dataAs<T>(),
             std::as_const(*right).template dataAs<T>(),
             [](T x, T y) { return isNaN(x) || better(y, x) ? y : x; });
  });
  call.give(std::move(result));
}

// `better` tells whether a comes before b; NaN never does.
template <auto better>
void extreme(Call& call) {
  if (call.size() >= 2 && !call[1].isEmpty()) return extremeOfTwo<better>(call);
  txArrayPtr numbers = numbersArgument(call[0], 1);
  if (numbers->isComplex()) raiseFault("class", "This function takes real numbers.", "", 1);
  // Of no numbers none is the best: nothing stays nothing.
  bool const nothing = numbers->isEmpty() && call.size() < 3;
  std::size_t const standard = nothing ? dimensionArgument(call, 2, *numbers) : 0;
  Reduced const of =
      nothing ? Reduced{std::move(numbers), standard} : reduced(call, 2, std::move(numbers));
  Lines const lines(*of.value, of.dimension);
  Shape const shape = lines.shapeWith(std::min<std::uint64_t>(lines.length(), 1));
  txArrayPtr result = makeUninitialized(shape, of.value->classID());
  txArrayPtr where = makeUninitialized(shape, txClassDouble);
  if (result->isEmpty()) {
    call.give(std::move(result));
    if (call.wants(1)) call.give(std::move(where), 1);
    return;
  }
  visitElementType(of.value->classID(), [&]<class T>(T) {
    T const* from = std::as_const(*of.value).template dataAs<T>();
    lines.forEach(lines.length(), [&](std::uint64_t line, std::uint64_t first) {
      std::uint64_t best = 0;
      each(lines.length(), [&](std::uint64_t i) {
        T const x = from[first + i * lines.stride()];
        T const kept = from[first + best * lines.stride()];
        if (better(x, kept) || (isNaN(kept) && !isNaN(x))) best = i;
      });
      result->dataAs<T>()[line] = from[first + best * lines.stride()];
      where->dataAs<double>()[line] = static_cast<double>(best + 1);
    });
  });
  call.give(std::move(result));
  if (call.wants(1)) call.give(std::move(where), 1);
}

constexpr auto kLess = [](auto a, auto b) { return a < b; };
constexpr auto kGreater = [](auto a, auto b) { return a > b; };

void median(Call& call) {
  Reduced const of = reduced(call, 1, realFloats(call));
  Lines const lines(*of.value, of.dimension);
  txArrayPtr result = makeUninitialized(lines.shapeWith(1), of.value->classID());
  auto const run = [&]<class T>(T) {
    T const* from = std::as_const(*of.value).template dataAs<T>();
    T* to = result->template dataAs<T>();
    std::uint64_t const n = lines.length();
    auto const line = txMakeBuffer<T>(n);
    lines.forEach(lines.length(), [&](std::uint64_t at, std::uint64_t first) {
      bool hasNaN = n == 0;
      each(n, [&](std::uint64_t i) {
        line[i] = from[first + i * lines.stride()];
        hasNaN = hasNaN || isNaN(line[i]);
      });
      if (hasNaN) {
        to[at] = std::numeric_limits<T>::quiet_NaN();
        return;
      }
      T* const middle = line.get() + n / 2;
      std::nth_element(line.get(), middle, line.get() + n, [](T a, T b) {
        embedded_host::checkInterrupt();
        return a < b;
      });
      to[at] = n % 2 == 1 ? *middle : std::midpoint(*std::max_element(line.get(), middle), *middle);
    });
  };
  of.value->classID() == txClassSingle ? run(float()) : run(double());
  call.give(std::move(result));
}

constexpr FunctionRow kRows[] = {
    {"median", median, 1, 2, 1, "the middle value", "median([3 1 2])"},
    {"var", spread<false>, 1, 3, 1, "variance", "var([1 2 3 4])"},
    {"std", spread<true>, 1, 3, 1, "standard deviation", "std([1 2 3 4])"},
    {"min", extreme<kLess>, 1, 3, 2, "smallest value, and where", "min([3 1 2])"},
    {"max", extreme<kGreater>, 1, 3, 2, "largest value, and where", "max([3 1 2])"},
};

}  // namespace

FunctionTable statisticsFunctions() { return kRows; }

}  // namespace language
