#pragma once

// What a VM keeps for the library that it has loaded.

#include <cstdint>
#include <memory>

#include "embedded_host/vm_context.h"
#include "host/tx_array.h"

namespace runtime {

struct Loaded {
  embedded_host::VmContext* vm;  // null once the VM has ended
  std::uint64_t streamActivity = 0;
  // The object that stands for the global stream, so that asking for it twice gives the same object
  // and dropping it does not clear the stream.
  txArrayPtr globalObject = nullptr;
};

// `function` with its calls counted in `streamActivity`.
embedded_host::Function counted(std::shared_ptr<Loaded> loaded, embedded_host::Function function);

// Adds the library's builtins and the host-language functions that it calls.
void addFunctions(std::shared_ptr<Loaded> const& loaded);

// Adds the host-language class RandStream.
void addRandStreamClass(std::shared_ptr<Loaded> const& loaded);

}  // namespace runtime
