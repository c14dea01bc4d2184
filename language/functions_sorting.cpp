// Order: sort, unique, find, differences, counts.

#include <algorithm>
#include <bit>
#include <cmath>

#include "embedded_host/array.h"
#include "embedded_host/interrupt.h"
#include "embedded_host/text.h"
#include "host/allocator.h"
#include "host/sort.h"
#include "language/fault.h"
#include "language/functions.h"
#include "language/lines.h"
#include "language/truth.h"

namespace language {

namespace {

using embedded_host::makeUninitialized;

// A number that orders as the values do: -0 equals 0, and NaN comes after everything.
template <class T>
std::uint64_t keyOf(T value) {
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
  if constexpr (std::is_floating_point_v<T>) {
    if (std::isnan(value)) return ~std::uint64_t{0};
    auto const bits = std::bit_cast<std::uint64_t>(static_cast<double>(value));
    return bits < kSign ? bits + kSign : kSign - (bits - kSign);
  } else if constexpr (std::is_signed_v<T>) {
    return static_cast<std::uint64_t>(std::int64_t{value}) + kSign;
  } else {
    return value;
  }
}

struct Entry {
  std::uint64_t key;
  std::uint64_t place;
};

txArrayPtr realArgument(Call const& call) {
  txArrayPtr const value = elementsArgument(call[0], 1);
  if (value->isComplex()) raiseFault("class", "Complex numbers have no order.", "sort abs(x)", 1);
  return txShare(*value);
}

// As the host sorts; its vectors have two dimensions.
void sortVector(Call& call, txArray const& value) {
  txArrayPtr const column = embedded_host::reshape(value, Shape{value.numel(), 1});
  txArray const* arguments[] = {column.get()};
  txArrayPtr results[2];
  int const wanted = call.wants(1) ? 2 : 1;
  mathcoreSortFcn(wanted, results, 1, arguments);
  for (int i = 0; i < wanted; ++i) call.give(embedded_host::reshape(*results[i], value.dims()), i);
}

// sort(x), sort(x,dimension), sort(...,'descend'); equal values keep their order.
void sort(Call& call) {
  txArrayPtr const value = realArgument(call);
  bool descending = false;
  std::size_t numbers = call.size();
  if (numbers > 1 && isScalarText(call[numbers - 1])) {
    std::string const direction = utf8Of(call[numbers - 1]);
    descending = embedded_host::equalIgnoringAsciiCase(direction, "descend");
    if (!descending && !embedded_host::equalIgnoringAsciiCase(direction, "ascend")) {
      raiseFault("option", "There is no such direction.", "'ascend' or 'descend'",
                 static_cast<int>(numbers));
    }
    --numbers;
  }
  if (numbers > 2) raiseFault("option", "There is no such direction.", "'ascend' or 'descend'", 3);
  std::vector<txArray const*> arguments(
      call.arguments().begin(), call.arguments().begin() + static_cast<std::ptrdiff_t>(numbers));
  Call const plain(call.session(), 1, nullptr, arguments);
  Lines const lines(*value, dimensionArgument(plain, 1, *value));
  if (value->classID() == txClassDouble && !descending && lines.length() == value->numel()) {
    return sortVector(call, *value);
  }
  txArrayPtr result = makeUninitialized(value->dims(), value->classID());
  txArrayPtr where = call.wants(1) ? makeUninitialized(value->dims(), txClassDouble) : nullptr;
  visitElementType(value->classID(), [&]<class T>(T) {
    T const* from = std::as_const(*value).template dataAs<T>();
    T* to = result->template dataAs<T>();
    auto const order = txMakeBuffer<Entry>(lines.length());
    std::uint64_t const turn = descending ? ~std::uint64_t{0} : 0;
    lines.forEach(lines.length(), [&](std::uint64_t, std::uint64_t first) {
      auto const each = [&](auto visit) {
        embedded_host::inParts(lines.length(), [&](std::uint64_t begin, std::uint64_t end) {
          for (std::uint64_t i = begin; i < end; ++i) visit(order[i], i);
        });
      };
      each([&](Entry& entry, std::uint64_t i) {
        entry = {keyOf(from[first + i * lines.stride()]) ^ turn, i};
      });
      std::sort(order.get(), order.get() + lines.length(), [](Entry const& a, Entry const& b) {
        embedded_host::checkInterrupt();
        return a.key < b.key || (a.key == b.key && a.place < b.place);
      });
      each([&](Entry const& entry, std::uint64_t i) {
        to[first + i * lines.stride()] = from[first + entry.place * lines.stride()];
        if (where) {
          where->dataAs<double>()[first + i * lines.stride()] =
              static_cast<double>(entry.place + 1);
        }
      });
    });
  });
  call.give(std::move(result));
  if (where) call.give(std::move(where), 1);
}

void unique(Call& call) {
  txArrayPtr const value = realArgument(call);
  bool const row = isMatrix(*value) && value->dims()[0] == 1 && value->numel() > 0;
  visitElementType(value->classID(), [&]<class T>(T) {
    T const* from = std::as_const(*value).template dataAs<T>();
    auto const sorted = txMakeBuffer<T>(value->numel());
    T* const end = sorted.get() + value->numel();
    T* numbers = sorted.get();  // their end, and the begin of what is none
    T* others = end;
    embedded_host::each(value->numel(), [&](std::uint64_t i) {
      *(isNaN(from[i]) ? --others : numbers++) = from[i];
    });
    std::sort(sorted.get(), numbers, [](T a, T b) {
      embedded_host::checkInterrupt();
      return a < b;
    });
    std::uint64_t const count =
        static_cast<std::uint64_t>(std::unique(sorted.get(), end) - sorted.get());
    txArrayPtr result =
        makeUninitialized(row ? Shape{1, count} : Shape{count, 1}, value->classID());
    std::copy(sorted.get(), sorted.get() + count, result->template dataAs<T>());
    call.give(std::move(result));
  });
}

void find(Call& call) {
  txArrayPtr const mask = truthOf(*elementsArgument(call[0], 1), 1);
  std::uint64_t const most = call.size() == 2 ? countArgument(call[1], 2, 1) : ~std::uint64_t{0};
  bool const* from = std::as_const(*mask).dataAs<bool>();
  std::vector<double> found;
  for (std::uint64_t i = 0; i < mask->numel() && found.size() < most; ++i) {
    if (i % embedded_host::kBetweenLooks == 0) embedded_host::checkInterrupt();
    if (from[i]) found.push_back(static_cast<double>(i + 1));
  }
  bool const row = isMatrix(*mask) && mask->dims()[0] == 1 && mask->dims()[1] != 1;
  txArrayPtr result =
      makeUninitialized(row ? Shape{1, found.size()} : Shape{found.size(), 1}, txClassDouble);
  std::copy(found.begin(), found.end(), result->dataAs<double>());
  call.give(std::move(result));
}

void diff(Call& call) {
  txArrayPtr const value = convertClass(
      *realArgument(call), call[0].classID() == txClassSingle ? txClassSingle : txClassDouble);
  Lines const lines(*value, dimensionArgument(call, 1, *value));
  std::uint64_t const length = lines.length() == 0 ? 0 : lines.length() - 1;
  txArrayPtr result = makeUninitialized(lines.shapeWith(length), value->classID());
  auto const run = [&]<class T>(T) {
    T const* from = std::as_const(*value).template dataAs<T>();
    T* to = result->template dataAs<T>();
    std::vector<std::uint64_t> starts;
    lines.forEach(lines.length(), [&](auto, std::uint64_t first) { starts.push_back(first); });
    lines.forEach(length, [&](std::uint64_t line, std::uint64_t first) {
      embedded_host::each(length, [&](std::uint64_t i) {
        std::uint64_t const at = starts[line] + i * lines.stride();
        to[first + i * lines.stride()] = from[at + lines.stride()] - from[at];
      });
    });
  };
  value->classID() == txClassSingle ? run(float()) : run(double());
  call.give(std::move(result));
}

// histcounts(x,edges): how many lie in [edges(i), edges(i+1)), the last edge included.
void histcounts(Call& call) {
  txArrayPtr const value = convertClass(*realArgument(call), txClassDouble);
  txArrayPtr const edges = convertClass(*elementsArgument(call[1], 2), txClassDouble);
  double const* edge = std::as_const(*edges).dataAs<double>();
  std::uint64_t const count = edges->numel();
  if (count < 2 || !std::is_sorted(edge, edge + count)) {
    raiseFault("edges", "The edges are two or more rising numbers.", "0:0.1:1", 2);
  }
  txArrayPtr result = embedded_host::makeZeros(Shape{1, count - 1}, txClassDouble);
  double* to = result->dataAs<double>();
  double const* from = std::as_const(*value).dataAs<double>();
  embedded_host::each(value->numel(), [&](std::uint64_t i) {
    if (!(from[i] >= edge[0] && from[i] <= edge[count - 1])) return;
    auto const after =
        static_cast<std::uint64_t>(std::upper_bound(edge, edge + count, from[i]) - edge);
    to[std::min(after, count - 1) - 1] += 1;
  });
  call.give(std::move(result));
}

constexpr FunctionRow kRows[] = {
    {"sort", sort, 1, 3, 2, "in order, and from where", "sort([3 1 2],'descend')"},
    {"unique", unique, 1, 1, 1, "each value once, in order", "unique([3 1 3])"},
    {"find", find, 1, 2, 1, "where the value is not 0", "find([0 1 1])"},
    {"diff", diff, 1, 2, 1, "differences of neighbours", "diff([1 4 9])"},
    {"histcounts", histcounts, 2, 2, 1, "how many lie between the edges",
     "histcounts([1 2 2 3],0:4)"},
};

}  // namespace

FunctionTable sortingFunctions() { return kRows; }

}  // namespace language
