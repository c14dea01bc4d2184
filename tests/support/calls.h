#pragma once

// Calling builtins with arguments written as in the host language.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "embedded_host/array.h"
#include "embedded_host/vm_context.h"
#include "host/tcos.h"
#include "rng/mr_functions.h"
#include "rng/randstream.h"
#include "runtime/vm.h"

namespace testing_support {

inline txArrayPtr toArgument(txArrayPtr value) { return value; }
inline txArrayPtr toArgument(double value) { return embedded_host::makeScalar(value); }
inline txArrayPtr toArgument(char const* text) { return embedded_host::makeTextUtf8(text); }

// args(2, 3, "single", embedded_host::makeRow<double>({1, 2}))
using Args = std::vector<txArrayPtr>;
template <class... Values>
Args args(Values&&... values) {
  Args result;
  (result.push_back(toArgument(std::forward<Values>(values))), ...);
  return result;
}

inline txArrayPtr row(std::initializer_list<double> values) {
  return embedded_host::makeRow<double>(values);
}
template <class T>
txArrayPtr typed(double value) {
  return embedded_host::makeScalar(static_cast<T>(value));
}
inline txArrayPtr imaginary(double value) { return embedded_host::makeComplex(0, value); }
inline txArrayPtr sparseScalar(double value) {
  return embedded_host::toSparse(*embedded_host::makeScalar(value));
}
inline txArrayPtr emptyMatrix() {
  return embedded_host::makeZeros(std::array<std::uint64_t, 2>{0, 0}, txClassDouble);
}
inline txArrayPtr cellOf(txArrayPtr element) {
  txArrayPtr cell = txCreateCell(std::array<std::uint64_t, 2>{1, 1});
  cell->setCell(0, std::move(element));
  return cell;
}

// The outputs of a builtin, max(nlhs, 1) of them.
inline std::vector<txArrayPtr> callAll(txBuiltin builtin, Args const& given, int nlhs) {
  std::vector<txArrayPtr> outputs(static_cast<std::size_t>(nlhs > 1 ? nlhs : 1));
  std::vector<txArray const*> inputs;
  for (txArrayPtr const& value : given) inputs.push_back(value.get());
  builtin(nlhs, outputs.data(), static_cast<int>(inputs.size()), inputs.data());
  return outputs;
}
inline txArrayPtr call(txBuiltin builtin, Args const& given = {}, int nlhs = 1) {
  return std::move(callAll(builtin, given, nlhs).front());
}

// "2x3 single", "1x1 complex double"
inline std::string shapeOf(txArray const& value) {
  std::string text;
  for (std::uint64_t d : value.dims()) text += (text.empty() ? "" : "x") + std::to_string(d);
  return text + (value.isComplex() ? " complex " : " ") + tcos::className(value);
}

inline std::vector<double> numbers(txArray const& value) {
  txArrayPtr const doubles = txToDouble(value);
  auto const elements = embedded_host::elementsOf<double>(*doubles);
  return {elements.begin(), elements.end()};
}

// A hash of the generator's state: what it will draw next.
inline std::size_t stateOf(randstream const& stream) {
  std::string state(stream.getStateBufLen(), '\0');
  stream.getStateBuf(state.data(), state.size());
  return std::hash<std::string>()(state);
}
inline std::size_t globalState() { return stateOf(*mrGetGlobalStream()); }

// A test inside a VM with the settings as shipped.
class VmTest : public testing::Test {
 protected:
  VmTest() { vm.context().useSettingsFile("no-such-file.toml"); }

  runtime::Vm vm;
  embedded_host::EnterVm inside{vm.context()};
};

}  // namespace testing_support
