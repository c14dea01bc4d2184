#include "language/functions.h"

#include "embedded_host/text.h"
#include "host/messages.h"
#include "language/fault.h"

namespace language {

std::vector<FunctionTable> functionTables() {
  return {constructorFunctions(), shapeFunctions(),       constantFunctions(),
          queryFunctions(),       elementwiseFunctions(), reductionFunctions(),
          statisticsFunctions(),  sortingFunctions(),     programFunctions()};
}

void registerFunctions(Session& session) {
  for (FunctionTable const table : functionTables()) {
    for (FunctionRow const& row : table) {
      session.vm().functions().add(
          row.name, [&session, &row](int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
            if (nlhs > row.mostOutputs) matrix::detail::error_maxlhs();
            if (row.most >= 0 && nrhs > row.most) matrix::detail::error_maxrhs();
            if (nrhs < row.fewest) matrix::detail::error_minrhs();
            Call call(session, nlhs, plhs, {prhs, static_cast<std::size_t>(nrhs)});
            row.body(call);
          });
    }
  }
}

void unregisterFunctions(Session& session) noexcept {
  for (FunctionTable const table : functionTables()) {
    for (FunctionRow const& row : table) session.vm().functions().remove(row.name);
  }
}

Shape sizeArguments(Call const& call, std::size_t first, std::size_t end) {
  if (first == end) return {1, 1};
  auto const arguments = call.arguments().subspan(first, end - first);
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (!hasElements(arguments[i]->classID())) {
      raiseFault("numbersExpected", "Sizes were expected, not a " + describe(*arguments[i]) + ".",
                 "", static_cast<int>(first + i) + 1);
    }
  }
  Shape shape(8);
  std::size_t const count =
      txGetDims(arguments.size(), arguments.data(), shape.data(), shape.size());
  shape.resize(count);
  if (count > 8) txGetDims(arguments.size(), arguments.data(), shape.data(), shape.size());
  return shape;
}

std::size_t dimensionArgument(Call const& call, std::size_t at, txArray const& value) {
  if (call.size() > at) {
    std::uint64_t const d = countArgument(call[at], static_cast<int>(at) + 1, 1);
    if (d > 64)
      raiseFault("countExpected", "There is no such dimension.", "", static_cast<int>(at) + 1);
    return d - 1;
  }
  Dims const dims = value.dims();
  for (std::size_t d = 0; d < dims.size(); ++d) {
    if (dims[d] != 1) return d;
  }
  return 0;
}

Reduced reduced(Call const& call, std::size_t at, txArrayPtr value) {
  if (call.size() > at && isScalarText(call[at])) {
    if (!embedded_host::equalIgnoringAsciiCase(utf8Of(call[at]), "all")) {
      raiseFault("option", "There is no such dimension.", "a number, or 'all'",
                 static_cast<int>(at) + 1);
    }
    return {embedded_host::reshape(*value, Shape{value->numel(), 1}), 0};
  }
  std::size_t const dimension = dimensionArgument(call, at, *value);
  Dims const dims = value->dims();
  if (call.size() <= at && dims.size() == 2 && dims[0] == 0 && dims[1] == 0) {
    return {embedded_host::reshape(*value, Shape{0, 1}), 0};
  }
  return {std::move(value), dimension};
}

}  // namespace language
