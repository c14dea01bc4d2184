#pragma once

// What a VM keeps for the library that it has loaded.

#include <memory>

#include "embedded_host/vm_context.h"
#include "host/tx_array.h"

namespace runtime {

struct Loaded {
  embedded_host::VmContext* vm;  // null once the VM has ended
  // The object that stands for the global stream, so that asking for it twice gives the same object
  // and dropping it does not clear the stream.
  txArrayPtr globalObject = nullptr;
};

// Adds the library's builtins and the host-language functions that it calls.
void addFunctions(std::shared_ptr<Loaded> const& loaded);

// Adds the host-language class RandStream.
void addRandStreamClass(std::shared_ptr<Loaded> const& loaded);

}  // namespace runtime
