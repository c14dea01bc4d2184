#include "host/sort.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "embedded_host/interrupt.h"
#include "embedded_host/messages.h"
#include "embedded_host/sort_uniforms.h"
#include "host/allocator.h"
#include "host/messages.h"

namespace {

struct Entry {
  std::int64_t key;
  std::uint64_t index;

  bool operator<(Entry const& other) const {
    embedded_host::checkInterrupt();
    return key < other.key || (key == other.key && index < other.index);
  }
};

// A number that orders as the doubles do: -0 equals 0, and every NaN comes last.
std::int64_t orderOf(double value) {
  if (std::isnan(value)) return std::numeric_limits<std::int64_t>::max();
  auto const bits = std::bit_cast<std::int64_t>(value);
  return bits >= 0 ? bits : std::numeric_limits<std::int64_t>::min() - bits;
}

void sortAny(std::span<const double> values, double* sorted, double* positions) {
  auto entries = txMakeBuffer<Entry>(values.size());
  embedded_host::inParts(values.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) entries[i] = {orderOf(values[i]), i};
  });
  std::sort(entries.get(), entries.get() + values.size());
  embedded_host::inParts(values.size(), [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      sorted[i] = values[entries[i].index];
      if (positions) positions[i] = static_cast<double>(entries[i].index + 1);
    }
  });
}

}  // namespace

void mathcoreSortFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  if (nlhs > 2) matrix::detail::error_maxlhs();
  if (nrhs > 1) matrix::detail::error_maxrhs();
  if (nrhs < 1) matrix::detail::error_minrhs();
  txArray const& array = *prhs[0];
  auto const dims = array.dims();
  bool const isVector = dims.size() == 2 && (dims[0] == 1 || dims[1] == 1 || array.isEmpty());
  if (array.classID() != txClassDouble || array.isComplex() || array.isSparse() || !isVector) {
    embedded_host::raiseHostError("TALVOR:sort:NotDoubleVector");
  }
  std::span<const double> const values(array.dataAs<double>(), array.numel());
  bool const wantsPositions = nlhs > 1;

  // Fewer values are not worth the tables of the other way.
  constexpr std::size_t kFew = 64;
  if (values.size() >= kFew) {
    if (auto sorted = embedded_host::sortUniforms(values, dims); sorted.values) {
      plhs[0] = std::move(sorted.values);
      if (wantsPositions) plhs[1] = std::move(sorted.positions);
      return;
    }
  }
  txArrayPtr sorted = txCreateUninitialized(dims, txClassDouble);
  txArrayPtr positions = wantsPositions ? txCreateUninitialized(dims, txClassDouble) : nullptr;
  sortAny(values, sorted->dataAs<double>(), positions ? positions->dataAs<double>() : nullptr);
  plhs[0] = std::move(sorted);
  if (positions) plhs[1] = std::move(positions);
}
