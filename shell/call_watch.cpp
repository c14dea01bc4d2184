#include "shell/call_watch.h"

#include <string>

#include "embedded_host/dispatcher.h"
#include "embedded_host/object_system.h"
#include "rng/mr_functions.h"

namespace shell {

randstream* streamBehind(txArray const* object) noexcept {
  try {
    return mrGetCPPRandStreamFromTxArray(object);
  } catch (...) {
    return nullptr;
  }
}

namespace {

using embedded_host::Function;

constexpr char const* kWatched[] = {"rand", "randn", "randi", "randperm", "advance", "reset"};

// The stream of a call: that of its first argument that is an object of the class, else the global
// one; null for a call that none can be found for.
randstream* streamOf(int nrhs, txArray const** prhs, bool isMethod) noexcept {
  txArray const* object = nullptr;
  for (int i = nrhs; isMethod && i > 0;) {
    embedded_host::ClassPtr const found = embedded_host::classOf(*prhs[--i]);
    if (found && found->name == "RandStream") object = prhs[i];
  }
  return streamBehind(object);
}

Function watched(std::string name, Function function, CallWatch* const* watch, bool isMethod) {
  return [=, name = std::move(name), function = std::move(function)](
             int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
    randstream const* const source = *watch ? streamOf(nrhs, prhs, isMethod) : nullptr;
    auto const before = source ? source->drawCounts() : randstream::DrawCounts();
    bool const pending = source && source->pendingNormal();
    function(nlhs, plhs, nrhs, prhs);
    if (!*watch) return;
    // Another stream than before: the call has put it in the place of the global one.
    if (randstream const* const stream = streamOf(nrhs, prhs, isMethod))
      (*watch)->called({name, *stream, stream == source ? before : stream->drawCounts(), pending,
                        plhs ? plhs[0].get() : nullptr});
  };
}

}  // namespace

void watchCalls(embedded_host::VmContext& vm, CallWatch* const* watch) {
  embedded_host::ClassDefinition streams = *vm.classes().find("RandStream");
  for (char const* const name : kWatched) {
    if (Function const* const function = vm.functions().find(name)) {
      vm.functions().add(name, watched(name, *function, watch, false));
    }
    auto const method = streams.methods.find(name);
    if (method != streams.methods.end()) {
      method->second = watched(name, method->second, watch, true);
    }
  }
  vm.classes().add(std::move(streams));
}

}  // namespace shell
