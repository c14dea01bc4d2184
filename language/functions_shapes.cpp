// Sizes and shapes.

#include <algorithm>

#include "embedded_host/array.h"
#include "embedded_host/interrupt.h"
#include "language/fault.h"
#include "language/functions.h"
#include "language/indexing.h"
#include "language/operators.h"

namespace language {

namespace {

void size(Call& call) {
  Dims const dims = call[0].dims();
  if (call.size() == 2) {
    std::uint64_t const d = countArgument(call[1], 2, 1);
    return call.give(makeDouble(d <= dims.size() ? static_cast<double>(dims[d - 1]) : 1));
  }
  if (call.outputs() <= 1) {
    txArrayPtr result = embedded_host::makeUninitialized(Shape{1, dims.size()}, txClassDouble);
    std::copy(dims.begin(), dims.end(), result->dataAs<double>());
    return call.give(std::move(result));
  }
  // [m,n] = size(x): the last output takes the dimensions that are left, multiplied.
  Shape const extents = foldedExtents(call[0], static_cast<std::size_t>(call.outputs()));
  for (int i = 0; i < call.outputs(); ++i) {
    call.give(makeDouble(static_cast<double>(extents[static_cast<std::size_t>(i)])), i);
  }
}

void numel(Call& call) { call.give(makeDouble(static_cast<double>(call[0].numel()))); }

void ndims(Call& call) { call.give(makeDouble(static_cast<double>(call[0].dims().size()))); }

void length(Call& call) {
  Dims const dims = call[0].dims();
  std::uint64_t const longest = call[0].isEmpty() ? 0 : *std::max_element(dims.begin(), dims.end());
  call.give(makeDouble(static_cast<double>(longest)));
}

// reshape(x,m,n) or reshape(x,[m n]); one extent may be [] and follows from the others.
void reshape(Call& call) {
  Shape shape;
  if (call.size() == 2) {
    shape = sizeArguments(call, 1, 2);
  } else {
    std::uint64_t known = 1;
    std::size_t open = 0;
    for (std::size_t i = 1; i < call.size(); ++i) {
      if (call[i].isEmpty()) {
        if (open != 0)
          raiseFault("sizes", "Only one extent can be left open.", "", static_cast<int>(i) + 1);
        open = i;
        shape.push_back(1);
      } else {
        shape.push_back(countArgument(call[i], static_cast<int>(i) + 1));
        known *= shape.back();
      }
    }
    if (open != 0) shape[open - 1] = known == 0 ? 0 : call[0].numel() / known;
  }
  std::uint64_t count = 1;
  for (std::uint64_t const extent : shape) count *= extent;
  if (count != call[0].numel()) {
    raiseFault("sizes",
               "A " + sizeText(call[0].dims()) + " array cannot become " + sizeText(shape) + ".",
               "the number of elements stays the same", 1);
  }
  call.give(embedded_host::reshape(*txToFull(call[0]), shape));
}

template <std::size_t dimension>
void join(Call& call) {
  std::vector<txArrayPtr> values;
  for (txArray const* value : call.arguments()) values.push_back(txShare(*value));
  call.give(concatenate(values, dimension));
}

void cat(Call& call) {
  std::uint64_t const d = countArgument(call[0], 1, 1);
  if (d > 64) raiseFault("countExpected", "There is no such dimension.", "", 1);
  std::vector<txArrayPtr> values;
  for (txArray const* value : call.arguments().subspan(1)) values.push_back(txShare(*value));
  call.give(concatenate(values, d - 1));
}

void repmat(Call& call) {
  Shape times = sizeArguments(call, 1, call.size());
  txArrayPtr result = txShare(call[0]);
  for (std::size_t d = 0; d < times.size(); ++d) {
    // Positions 1..n, times over, along one dimension; the others whole.
    std::size_t const rank = std::max(result->dims().size(), d + 1);
    std::uint64_t const extent = d < result->dims().size() ? result->dims()[d] : 1;
    txArrayPtr positions = embedded_host::makeUninitialized(Shape{extent, times[d]}, txClassDouble);
    double* to = positions->dataAs<double>();
    embedded_host::each(positions->numel(),
                        [=](std::uint64_t i) { to[i] = static_cast<double>(i % extent + 1); });
    Subscripts subscripts;
    for (std::size_t k = 0; k < rank; ++k) {
      subscripts.emplace_back(k == d ? positions.get() : nullptr, static_cast<int>(k) + 1);
    }
    result = readElements(*result, subscripts);
  }
  call.give(std::move(result));
}

void linspace(Call& call) {
  double const from = numberArgument(call[0], 1);
  double const to = numberArgument(call[1], 2);
  std::uint64_t const count = call.size() == 3 ? countArgument(call[2], 3) : 100;
  txArrayPtr result = embedded_host::makeUninitialized(Shape{1, count}, txClassDouble);
  double* out = result->dataAs<double>();
  double const distance = to - from;
  bool const isFar = std::isinf(distance) && std::isfinite(from) && std::isfinite(to);
  embedded_host::each(count, [=](std::uint64_t i) {
    double const part = static_cast<double>(i) / static_cast<double>(count - 1);
    out[i] = i + 1 == count ? to
             : i == 0       ? from
             : isFar        ? from * (1 - part) + to * part
                            : from + distance * part;
  });
  call.give(std::move(result));
}

constexpr FunctionRow kRows[] = {
    {"size", size, 1, 2, 64, "extents of an array", "size(zeros(2,3))"},
    {"numel", numel, 1, 1, 1, "number of elements", "numel(zeros(2,3))"},
    {"ndims", ndims, 1, 1, 1, "number of dimensions", "ndims(zeros(2,3,4))"},
    {"length", length, 1, 1, 1, "the longest extent", "length(zeros(2,3))"},
    {"reshape", reshape, 2, -1, 1, "the same elements in another shape", "reshape(1:6,2,[])"},
    {"horzcat", join<1>, 0, -1, 1, "side by side, as [a, b]", "horzcat([1 2],3)"},
    {"vertcat", join<0>, 0, -1, 1, "one above the other, as [a; b]", "vertcat(1,2)"},
    {"cat", cat, 1, -1, 1, "together along a dimension", "size(cat(3,1,2))"},
    {"repmat", repmat, 2, -1, 1, "copies of an array", "repmat([1 2],2,2)"},
    {"linspace", linspace, 2, 3, 1, "evenly spaced numbers", "linspace(0,1,5)"},
};

}  // namespace

FunctionTable shapeFunctions() { return kRows; }

}  // namespace language
