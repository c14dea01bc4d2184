// Sums, means, extremes along a dimension.

#include <algorithm>
#include <numeric>

#include "embedded_host/array.h"
#include "language/broadcast.h"
#include "language/fault.h"
#include "language/functions.h"
#include "language/lines.h"
#include "language/operators.h"

namespace language {

namespace {

using embedded_host::makeUninitialized;

// The numbers of a line are added up in this type, in order.
template <class T>
using Accumulator =
    std::conditional_t<std::is_same_v<T, std::int64_t> || std::is_same_v<T, std::uint64_t>,
                       long double, double>;

// Integers stay in their class, single single; text and logicals become double.
txArrayPtr asNumbers(txArray const& value, int position) {
  txArrayPtr const full = elementsArgument(value, position);
  return full->isNumeric() ? txShare(*full) : convertClass(*full, txClassDouble);
}

// A reduction of an empty 0-by-0 matrix gives one value, as that of an empty column does.
txArrayPtr columnIfNothing(txArrayPtr value) {
  Dims const dims = value->dims();
  if (dims.size() == 2 && dims[0] == 0 && dims[1] == 0) {
    return embedded_host::reshape(*value, Shape{0, 1});
  }
  return value;
}

// fold(accumulator, element) over each line, or over each prefix of it.
template <bool prefixes, class Fold>
void accumulate(Call& call, double start, Fold fold) {
  txArrayPtr value = asNumbers(call[0], 1);
  bool const all = call.size() == 2 && isScalarText(call[1]) && utf8Of(call[1]) == "all";
  if (all) value = embedded_host::reshape(*value, Shape{value->numel(), 1});
  if (!prefixes) value = columnIfNothing(std::move(value));
  std::size_t const dimension = all ? 0 : dimensionArgument(call, 1, *value);
  Lines const lines(*value, dimension);
  bool const complex = value->isComplex();
  std::uint64_t const length = prefixes ? lines.length() : 1;
  txArrayPtr result = makeUninitialized(lines.shapeWith(length), value->classID(),
                                        complex ? txComplexity::complex : txComplexity::real);
  visitElementType(value->classID(), [&]<class T>(T) {
    auto const run = [&]<class Element, class Sum>(Element, Sum) {
      Element const* from = std::as_const(*value).template dataAs<Element>();
      Element* to = result->template dataAs<Element>();
      auto const stored = [](Sum sum) {
        if constexpr (std::is_same_v<Element, T>) {
          return castElement<Element>(sum);
        } else {
          return Element(sum);
        }
      };
      lines.forEach(lines.length(), [&](std::uint64_t line, std::uint64_t first) {
        Sum sum(start);
        for (std::uint64_t i = 0; i < lines.length(); ++i) {
          std::uint64_t const at = first + i * lines.stride();
          sum = fold(sum, Sum(from[at]));
          if (prefixes) to[at] = stored(sum);
        }
        if (!prefixes) to[line] = stored(sum);
      });
    };
    if constexpr (std::is_floating_point_v<T>) {
      if (complex) return run(std::complex<T>(), std::complex<double>());
    }
    run(T(), Accumulator<T>());
  });
  call.give(std::move(result));
}

constexpr auto kAdd = [](auto a, auto b) { return a + b; };
constexpr auto kMultiply = [](auto a, auto b) { return a * b; };

void sum(Call& call) { accumulate<false>(call, 0, kAdd); }
void prod(Call& call) { accumulate<false>(call, 1, kMultiply); }
void cumsum(Call& call) { accumulate<true>(call, 0, kAdd); }
void cumprod(Call& call) { accumulate<true>(call, 1, kMultiply); }

txArrayPtr floatArgument(txArray const& value, int position) {
  txArrayPtr const full = elementsArgument(value, position);
  return convertClass(*full, full->classID() == txClassSingle ? txClassSingle : txClassDouble);
}

void mean(Call& call) {
  txArrayPtr const value = columnIfNothing(floatArgument(call[0], 1));
  bool const all = call.size() == 2 && isScalarText(call[1]) && utf8Of(call[1]) == "all";
  double const count = static_cast<double>(
      all ? value->numel() : Lines(*value, dimensionArgument(call, 1, *value)).length());
  std::vector<txArray const*> arguments{value.get()};
  for (txArray const* more : call.arguments().subspan(1)) arguments.push_back(more);
  txArrayPtr total;
  Call inner(call.session(), 1, &total, arguments);
  sum(inner);
  call.give(applyBinary(Operator::elementDivide, *total, *makeDouble(count)));
}

// var(x), var(x,1) for the mean of squares instead of n-1, var(x,w,dimension). Two passes, so that
// a large mean costs no digits.
template <bool root>
void spread(Call& call) {
  txArrayPtr const value = columnIfNothing(floatArgument(call[0], 1));
  if (value->isComplex()) raiseFault("class", "This function takes real numbers.", "", 1);
  bool const population = call.size() >= 2 && !call[1].isEmpty() && numberArgument(call[1], 2) == 1;
  Lines const lines(*value, dimensionArgument(call, 2, *value));
  txArrayPtr result = makeUninitialized(lines.shapeWith(1), value->classID());
  auto const run = [&]<class T>(T) {
    T const* from = std::as_const(*value).template dataAs<T>();
    T* to = result->template dataAs<T>();
    double const n = static_cast<double>(lines.length());
    lines.forEach(lines.length(), [&](std::uint64_t line, std::uint64_t first) {
      double total = 0;
      double squares = 0;
      for (std::uint64_t i = 0; i < lines.length(); ++i) total += from[first + i * lines.stride()];
      double const middle = total / n;
      for (std::uint64_t i = 0; i < lines.length(); ++i) {
        double const d = from[first + i * lines.stride()] - middle;
        squares += d * d;
      }
      double const variance = n == 0 ? NAN : n == 1 ? squares : squares / (population ? n : n - 1);
      to[line] = static_cast<T>(root ? std::sqrt(variance) : variance);
    });
  };
  value->classID() == txClassSingle ? run(float()) : run(double());
  call.give(std::move(result));
}

// `better` tells whether a comes before b; NaN never does.
template <auto better>
void extreme(Call& call) {
  if (call.size() >= 2 && !call[1].isEmpty()) {  // of two arrays, element by element
    txArrayPtr const a = elementsArgument(call[0], 1);
    txArrayPtr const b = elementsArgument(call[1], 2);
    txArrayPtr const total = applyBinary(Operator::add, *a, *b);  // checks sizes, gives the class
    if (total->isComplex()) raiseFault("class", "This function takes real numbers.", "", 1);
    txClassID const id = total->classID();
    txArrayPtr const left = convertClass(*a, id);
    txArrayPtr const right = convertClass(*b, id);
    Broadcast const walk(*left, *right, "min or max");
    txArrayPtr result = makeUninitialized(walk.result(), id);
    visitElementType(id, [&]<class T>(T) {
      walk.run(result->dataAs<T>(), std::as_const(*left).template dataAs<T>(),
               std::as_const(*right).template dataAs<T>(),
               [](T x, T y) { return isNaN(x) || better(y, x) ? y : x; });
    });
    return call.give(std::move(result));
  }
  txArrayPtr const value = asNumbers(call[0], 1);
  if (value->isComplex()) raiseFault("class", "This function takes real numbers.", "", 1);
  if (value->isEmpty()) {
    call.give(emptyDouble());
    if (call.wants(1)) call.give(emptyDouble(), 1);
    return;
  }
  Lines const lines(*value, dimensionArgument(call, 2, *value));
  txArrayPtr result = makeUninitialized(lines.shapeWith(1), value->classID());
  txArrayPtr where = makeUninitialized(lines.shapeWith(1), txClassDouble);
  visitElementType(value->classID(), [&]<class T>(T) {
    T const* from = std::as_const(*value).template dataAs<T>();
    lines.forEach(lines.length(), [&](std::uint64_t line, std::uint64_t first) {
      std::uint64_t best = 0;
      for (std::uint64_t i = 1; i < lines.length(); ++i) {
        T const x = from[first + i * lines.stride()];
        T const kept = from[first + best * lines.stride()];
        if (better(x, kept) || (isNaN(kept) && !isNaN(x))) best = i;
      }
      result->dataAs<T>()[line] = from[first + best * lines.stride()];
      where->dataAs<double>()[line] = static_cast<double>(best + 1);
    });
  });
  call.give(std::move(result));
  if (call.wants(1)) call.give(std::move(where), 1);
}

constexpr auto kLess = [](auto a, auto b) { return a < b; };
constexpr auto kGreater = [](auto a, auto b) { return a > b; };

// any: one true is enough; all: one false is too much.
template <bool decisive>
void truth(Call& call) {
  txArrayPtr const value =
      columnIfNothing(convertClass(*elementsArgument(call[0], 1), txClassLogical));
  Lines const lines(*value, dimensionArgument(call, 1, *value));
  txArrayPtr result = makeUninitialized(lines.shapeWith(1), txClassLogical);
  bool const* from = std::as_const(*value).dataAs<bool>();
  bool* to = result->dataAs<bool>();
  lines.forEach(lines.length(), [&](std::uint64_t line, std::uint64_t first) {
    to[line] = !decisive;
    for (std::uint64_t i = 0; i < lines.length(); ++i) {
      if (from[first + i * lines.stride()] == decisive) to[line] = decisive;
    }
  });
  call.give(std::move(result));
}

void median(Call& call) {
  txArrayPtr const value = columnIfNothing(floatArgument(call[0], 1));
  if (value->isComplex()) raiseFault("class", "This function takes real numbers.", "", 1);
  Lines const lines(*value, dimensionArgument(call, 1, *value));
  txArrayPtr result = makeUninitialized(lines.shapeWith(1), value->classID());
  auto const run = [&]<class T>(T) {
    T const* from = std::as_const(*value).template dataAs<T>();
    T* to = result->template dataAs<T>();
    std::vector<T> line(lines.length());
    lines.forEach(lines.length(), [&](std::uint64_t at, std::uint64_t first) {
      bool hasNaN = line.empty();
      for (std::uint64_t i = 0; i < line.size(); ++i) {
        line[i] = from[first + i * lines.stride()];
        hasNaN = hasNaN || isNaN(line[i]);
      }
      if (hasNaN) {
        to[at] = std::numeric_limits<T>::quiet_NaN();
        return;
      }
      auto const middle = line.begin() + static_cast<std::ptrdiff_t>(line.size() / 2);
      std::nth_element(line.begin(), middle, line.end());
      to[at] = line.size() % 2 == 1
                   ? *middle
                   : std::midpoint(*std::max_element(line.begin(), middle), *middle);
    });
  };
  value->classID() == txClassSingle ? run(float()) : run(double());
  call.give(std::move(result));
}

constexpr FunctionRow kRows[] = {
    {"sum", sum, 1, 2, 1, "sum along a dimension, or of 'all'", "sum(1:10)"},
    {"prod", prod, 1, 2, 1, "product along a dimension, or of 'all'", "prod(1:5)"},
    {"cumsum", cumsum, 1, 2, 1, "running sums", "cumsum([1 2 3])"},
    {"cumprod", cumprod, 1, 2, 1, "running products", "cumprod([1 2 3])"},
    {"mean", mean, 1, 2, 1, "mean along a dimension, or of 'all'", "mean([1 2; 3 4])"},
    {"median", median, 1, 2, 1, "the middle value", "median([3 1 2])"},
    {"var", spread<false>, 1, 3, 1, "variance", "var([1 2 3 4])"},
    {"std", spread<true>, 1, 3, 1, "standard deviation", "std([1 2 3 4])"},
    {"min", extreme<kLess>, 1, 3, 2, "smallest value, and where", "min([3 1 2])"},
    {"max", extreme<kGreater>, 1, 3, 2, "largest value, and where", "max([3 1 2])"},
    {"any", truth<true>, 1, 2, 1, "is one of them true", "any([0 0 1])"},
    {"all", truth<false>, 1, 2, 1, "are all of them true", "all([1 1 0])"},
};

}  // namespace

FunctionTable reductionFunctions() { return kRows; }

}  // namespace language
