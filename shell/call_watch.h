#pragma once

// Calls that move streams, as the shell sees them: the functions on the global stream and the
// methods of RandStream.

#include <string_view>

#include "embedded_host/vm_context.h"
#include "host/tx_array.h"
#include "rng/randstream.h"

namespace shell {

class CallWatch {
 public:
  struct Call {
    std::string_view name;
    randstream const& stream;
    randstream::DrawCounts before;  // of the stream
    bool hadPendingNormal;
    txArray const* result;  // null when there is none
  };

  virtual ~CallWatch() = default;
  // Told after each call that succeeded.
  virtual void called(Call const& call) = 0;
};

// The stream behind an object of RandStream, null for one that was deleted; the global stream when
// `object` is null.
randstream* streamBehind(txArray const* object) noexcept;

// Passes the calls of a VM by `*watch` from now on, when that is not null. `watch` outlives the
// VM's calls.
void watchCalls(embedded_host::VmContext& vm, CallWatch* const* watch);

}  // namespace shell
