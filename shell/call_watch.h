#pragma once

// Calls that move streams, as the shell sees them: the functions on the global stream and the
// methods of RandStream.

#include <cstdint>
#include <span>
#include <string_view>

#include "embedded_host/vm_context.h"
#include "host/tx_array.h"
#include "rng/randstream.h"

namespace shell {

class CallWatch {
 public:
  virtual ~CallWatch() = default;
  // Told after each call that succeeded. `result` is null when there is none.
  virtual void called(std::string_view name, randstream& stream, txArray const* result) = 0;
};

// Passes the calls of a VM by `*watch` from now on, when that is not null, and makes long advances
// of generators that cannot jump with a line of progress and so that an interrupt leaves the stream
// where it was. `watch` outlives the VM's calls.
void watchCalls(embedded_host::VmContext& vm, CallWatch* const* watch);

}  // namespace shell
