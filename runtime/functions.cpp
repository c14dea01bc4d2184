#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <utility>

#include "builtins/builtins.h"
#include "embedded_host/dispatcher.h"
#include "host/except.h"
#include "host/tcos.h"
#include "runtime/loaded.h"
#include "vmstate/global_stream.h"
#include "vmstate/legacy_mode.h"

namespace runtime {
namespace {

using embedded_host::Function;

struct Row {
  char const* name;
  txBuiltin builtin;
};

// May draw from the global stream, make or replace it.
constexpr Row kOnGlobalStream[] = {
    {"rand", mathrngRandFcn},
    {"randi", mathrngRandiFcn},
    {"randn", mathrngRandnFcn},
    {"randperm", mathrngRandpermFcn},
    {"clearGlobalRandStream", clearGlobalRandStream},
    {"inLegacyMode", inLegacyMode},
};
// The builtins that take or give bare stream handles are for the class RandStream alone: a handle
// is an address, and no text that a user types may become one.
constexpr Row kOthers[] = {
    {"getFactoryDefaultRandStreamType", getFactoryDefaultRandStreamType},
    {"inLegacyMode", inLegacyMode},
    {"setDefaultRandStream", setDefaultRandStream},
};

// [a, b, ...] = convertSizeArgToDouble(a, b, ...): objects whose class has a method "double" are
// converted by it, everything else is handed back. Text is no size, so it stays text.
void convertSizeArgToDouble(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  for (int i = 0; i < std::min(nlhs, nrhs); ++i) {
    if (!tcos::callMethod("double", 1, &plhs[i], std::span(prhs + i, 1)) || !plhs[i])
      plhs[i] = txShare(*prhs[i]);
  }
}

// Whether a failing call may have drawn: when memory ran out late, when the generator failed, or
// when a class of its own has taken part in the call.
bool mayHaveDrawn(foundation::core::except::AnyException const& error,
                  std::span<txArray const* const> args) {
  constexpr std::array<std::string_view, 3> kLate = {
      "TALVOR:nomem", "TALVOR:RandStream:PluginError", "TALVOR:RandStream:UnexpectedPluginError"};
  return std::ranges::find(kLate, error.GetID()) != kLate.end() ||
         std::ranges::any_of(args, [](txArray const* arg) {
           return arg->classID() == txClassObject && tcos::className(*arg) != "RandStream";
         });
}

}  // namespace

Function counted(std::shared_ptr<Loaded> loaded, Function function) {
  return [loaded = std::move(loaded), function = std::move(function)](
             int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
    try {
      function(nlhs, plhs, nrhs, prhs);
    } catch (foundation::core::except::AnyException const& error) {
      if (mayHaveDrawn(error, std::span(prhs, static_cast<std::size_t>(nrhs))))
        ++loaded->streamActivity;
      throw;
    } catch (...) {
      ++loaded->streamActivity;
      throw;
    }
    ++loaded->streamActivity;
  };
}

void addFunctions(std::shared_ptr<Loaded> const& loaded) {
  embedded_host::Functions& functions = loaded->vm->functions();
  for (Row const& row : kOnGlobalStream) functions.add(row.name, counted(loaded, row.builtin));
  for (Row const& row : kOthers) functions.add(row.name, row.builtin);
  functions.add("talvor.internal.builtinhelper.convertSizeArgToDouble", convertSizeArgToDouble);
}

}  // namespace runtime
