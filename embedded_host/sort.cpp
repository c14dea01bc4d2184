#include "host/sort.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "embedded_host/messages.h"
#include "host/allocator.h"
#include "host/messages.h"
#include "host/tcos.h"

void mathcoreSortFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  if (nlhs > 2) matrix::detail::error_maxlhs();
  if (nrhs > 1) matrix::detail::error_maxrhs();
  if (nrhs < 1) matrix::detail::error_minrhs();
  txArray const& values = *prhs[0];
  bool const isVector = values.dims().size() == 2 && (values.dims()[0] == 1 ||
                                                      values.dims()[1] == 1 || values.isEmpty());
  if (values.classID() != txClassDouble || values.isComplex() || values.isSparse() || !isVector) {
    embedded_host::raiseHostError("TALVOR:sort:NotDoubleVector");
  }
  std::uint64_t const count = values.numel();
  double const* const from = values.dataAs<double>();
  auto order = txMakeBuffer<std::uint64_t>(count);
  std::iota(order.get(), order.get() + count, std::uint64_t{0});
  std::stable_sort(order.get(), order.get() + count, [&](std::uint64_t a, std::uint64_t b) {
    return from[a] < from[b] || (std::isnan(from[b]) && !std::isnan(from[a]));
  });
  plhs[0] = txCreateUninitialized(values.dims(), txClassDouble);
  double* const sorted = plhs[0]->dataAs<double>();
  for (std::uint64_t i = 0; i < count; ++i) sorted[i] = from[order[i]];
  if (nlhs < 2) return;
  plhs[1] = txCreateUninitialized(values.dims(), txClassDouble);
  double* const positions = plhs[1]->dataAs<double>();
  for (std::uint64_t i = 0; i < count; ++i) positions[i] = static_cast<double>(order[i] + 1);
}
