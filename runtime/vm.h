#pragma once

// One virtual machine of the embedded host with the random-number library loaded: what a C++
// program includes to have all of it.

#include <initializer_list>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "embedded_host/vm_context.h"
#include "host/export.h"
#include "host/tx_array.h"
#include "language/session.h"

namespace runtime {

struct Loaded;
class EvaluationSession;

// VMs are independent of each other, and each is used by one thread at a time. Its calls enter the
// VM; code that calls the library's functions itself enters it with embedded_host::EnterVm. Stream
// objects may outlive their VM, where they keep their stream but can do no more than be destroyed.
class TV_EXPORT Vm {
 public:
  Vm();
  ~Vm();
  Vm(Vm const&) = delete;
  Vm& operator=(Vm const&) = delete;

  embedded_host::VmContext& context() noexcept { return *context_; }

  // Calls name(args...) as the host language does: a method of an argument's class, else a
  // function, else the constructor of a class; "RandStream.global" is a static method. Returns
  // max(nlhs, 1) outputs, null where the callee made none. Errors: "TALVOR:UndefinedFunction" and
  // those of the callee.
  std::vector<txArrayPtr> call(std::string_view name, std::span<txArray const* const> args,
                               int nlhs);
  // The same for the first output.
  txArrayPtr call(std::string_view name, std::initializer_list<txArray const*> args = {},
                  int nlhs = 1);

  // Runs source text of the host language, whose variables stay for the next one. Returns the value
  // of its last statement that has one, null when none has. What it shows and prints goes to
  // `output`, nowhere when that is null. Errors: language::SourceError.
  txArrayPtr evaluate(std::string_view source, language::Output* output = nullptr);

 private:
  std::unique_ptr<embedded_host::VmContext> context_;
  std::shared_ptr<Loaded> loaded_;
  std::unique_ptr<EvaluationSession> session_;  // made by the first evaluation
};

}  // namespace runtime
