#pragma once

// One session of the host language in one VM: its variables, and the running of source text.

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "embedded_host/vm_context.h"
#include "host/export.h"
#include "host/tx_array.h"
#include "language/fault.h"

namespace language {

// Where a program's results go.
class Output {
 public:
  virtual ~Output() = default;
  // The value of a statement that does not end in a semicolon; `name` is "ans" for a bare one.
  virtual void show(std::string_view name, txArray const& value) = 0;
  // Text of print(...), with its newline.
  virtual void print(std::string_view utf8) = 0;
  // A value that is no scalar and no text, given to print(...).
  virtual void printValue(txArray const& value) = 0;
};

// Adds the language's own functions to the VM's dispatcher, where they stay until the session ends.
// The VM must be entered during every call and outlive the session.
class TV_EXPORT Session {
 public:
  using Variables = std::map<std::string, txArrayPtr, std::less<>>;

  Session(embedded_host::VmContext& vm, Output& output);
  ~Session();
  Session(Session const&) = delete;
  Session& operator=(Session const&) = delete;

  // Parses all of `source`, then runs it. Raises a SourceError; statements before the failing one
  // have taken effect. embedded_host::requestInterrupt ends it with an error that no program
  // catches; what it was assigning then stays as it was.
  void run(std::string_view source);

  Variables const& variables() const noexcept { return variables_; }
  // Null when there is none.
  txArray const* variable(std::string_view name) const;
  void setVariable(std::string_view name, txArrayPtr value);
  void clearVariables();

  // The value of the last statement that had one, shown or not; null when there was none yet.
  txArray const* lastValue() const noexcept;
  std::string const& lastName() const noexcept { return lastName_; }
  // Whether the last statement asked for its value to be shown.
  bool lastShown() const noexcept { return lastShown_; }
  void forgetLastValue();

  // The call that is being evaluated: where a warning comes from. Nothing between calls.
  std::optional<SourceSpan> callInProgress() const noexcept { return callInProgress_; }

  // Called before each statement of a program that is no part of another one.
  void atStatement(std::function<void()> hook) { statementHook_ = std::move(hook); }

  // From now on a statement `name word` calls name('word').
  void addCommand(std::string name) { commands_.push_back(std::move(name)); }

  Output& output() noexcept { return output_; }
  embedded_host::VmContext& vm() const noexcept { return vm_; }
  std::optional<std::chrono::steady_clock::time_point>& timer() noexcept { return timer_; }

  // Every name that a program may use now: functions, classes, variables, keywords.
  std::vector<std::string> knownNames() const;

 private:
  friend class Evaluator;

  void keepLastValue();

  embedded_host::VmContext& vm_;
  Output& output_;
  Variables variables_;
  // The last value is that of the variable lastName_ until this changes otherwise. A share of it
  // here would make every assignment to an element copy all of them.
  bool lastIsVariable_ = false;
  txArrayPtr lastValue_;
  std::string lastName_;
  bool lastShown_ = false;
  std::optional<SourceSpan> callInProgress_;
  std::function<void()> statementHook_;
  std::vector<std::string> commands_;
  std::optional<std::chrono::steady_clock::time_point> timer_;
};

}  // namespace language
