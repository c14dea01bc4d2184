// Sums, products, means and truths along a dimension.

#include <algorithm>

#include "embedded_host/array.h"
#include "embedded_host/interrupt.h"
#include "language/exact.h"
#include "language/fault.h"
#include "language/functions.h"
#include "language/lines.h"
#include "language/truth.h"
#include "tfl_rng/uint128.h"

namespace language {

namespace {

using embedded_host::makeUninitialized;
using tfl_rng::int128;

// The sum of a line so far: of integers exact, of the others in double, in order.
template <class T>
struct Sum {
  double total = 0;
  void take(T element) { total += element; }
  T result(std::uint64_t) const { return static_cast<T>(total); }
};
template <class T>
struct Sum<std::complex<T>> {
  std::complex<double> total = 0;
  void take(std::complex<T> element) { total += std::complex<double>(element); }
  std::complex<T> result(std::uint64_t) const { return std::complex<T>(total); }
};
template <std::integral T>
struct Sum<T> {
  int128 total = 0;
  void take(T element) { total += element; }
  T result(std::uint64_t) const {
    int128 const lowest = std::numeric_limits<T>::min();
    int128 const highest = std::numeric_limits<T>::max();
    return static_cast<T>(std::clamp(total, lowest, highest));
  }
};

template <class T>
struct Product {
  std::conditional_t<embedded_host::kClassOf<T> == txClassUnknown, std::complex<double>, double>
      total = 1;
  void take(T element) { total *= decltype(total)(element); }
  T result(std::uint64_t) const { return T(total); }
};
template <std::integral T>
struct Product<T> {
  Whole total{1, false};
  void take(T element) { total = total * wholeOf(element); }
  T result(std::uint64_t) const { return total.template as<T>(); }
};

// Of integers there is none: they come as doubles.
template <class T>
struct Mean : Sum<T> {
  T result(std::uint64_t count) const { return T(this->total / static_cast<double>(count)); }
};

template <template <class> class Accumulator>
constexpr bool kTakesIntegers = true;
template <>
constexpr bool kTakesIntegers<Mean> = false;

// What `Accumulator` makes of each line, or of each prefix of it.
template <template <class> class Accumulator, bool prefixes>
void accumulate(Call& call, Reduced const& of) {
  txArray const& value = *of.value;
  Lines const lines(value, of.dimension);
  txArrayPtr result =
      makeUninitialized(lines.shapeWith(prefixes ? lines.length() : 1), value.classID(),
                        value.isComplex() ? txComplexity::complex : txComplexity::real);
  auto const run = [&]<class T>(T) {
    T const* from = value.dataAs<T>();
    T* to = result->dataAs<T>();
    lines.forEach(lines.length(), [&](std::uint64_t line, std::uint64_t first) {
      Accumulator<T> sofar;
      embedded_host::each(lines.length(), [&](std::uint64_t i) {
        std::uint64_t const at = first + i * lines.stride();
        sofar.take(from[at]);
        if (prefixes) to[at] = sofar.result(i + 1);
      });
      if (!prefixes) to[line] = sofar.result(lines.length());
    });
  };
  visitElementType(value.classID(), [&]<class T>(T) {
    if constexpr (std::is_floating_point_v<T>) {
      value.isComplex() ? run(std::complex<T>()) : run(T());
    } else if constexpr (kTakesIntegers<Accumulator>) {
      run(T());
    }
  });
  call.give(std::move(result));
}

template <template <class> class Accumulator>
void reduce(Call& call) {
  accumulate<Accumulator, false>(call, reduced(call, 1, numbersArgument(call[0], 1)));
}

template <template <class> class Accumulator>
void running(Call& call) {
  txArrayPtr value = numbersArgument(call[0], 1);
  if (call.size() == 2 && isScalarText(call[1])) {
    raiseFault("option", "There is no such dimension.", "a number; all in order are x(:)", 2);
  }
  std::size_t const dimension = dimensionArgument(call, 1, *value);
  accumulate<Accumulator, true>(call, {std::move(value), dimension});
}

void mean(Call& call) {
  accumulate<Mean, false>(call, reduced(call, 1, floatArgument(call[0], 1)));
}

// any: one true is enough; all: one false is too much.
template <bool decisive>
void truth(Call& call) {
  auto const [value, dimension] = reduced(call, 1, truthOf(*elementsArgument(call[0], 1), 1));
  Lines const lines(*value, dimension);
  txArrayPtr result = makeUninitialized(lines.shapeWith(1), txClassLogical);
  bool const* from = std::as_const(*value).dataAs<bool>();
  bool* to = result->dataAs<bool>();
  lines.forEach(lines.length(), [&](std::uint64_t line, std::uint64_t first) {
    to[line] = !decisive;
    embedded_host::each(lines.length(), [&](std::uint64_t i) {
      if (from[first + i * lines.stride()] == decisive) to[line] = decisive;
    });
  });
  call.give(std::move(result));
}

constexpr FunctionRow kRows[] = {
    {"sum", reduce<Sum>, 1, 2, 1, "sum along a dimension, or of 'all'", "sum(1:10)"},
    {"prod", reduce<Product>, 1, 2, 1, "product along a dimension, or of 'all'", "prod(1:5)"},
    {"cumsum", running<Sum>, 1, 2, 1, "running sums", "cumsum([1 2 3])"},
    {"cumprod", running<Product>, 1, 2, 1, "running products", "cumprod([1 2 3])"},
    {"mean", mean, 1, 2, 1, "mean along a dimension, or of 'all'", "mean([1 2; 3 4])"},
    {"any", truth<true>, 1, 2, 1, "is one of them true", "any([0 0 1])"},
    {"all", truth<false>, 1, 2, 1, "are all of them true", "all([1 1 0])"},
};

}  // namespace

FunctionTable reductionFunctions() { return kRows; }

}  // namespace language
