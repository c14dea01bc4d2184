#pragma once

// A virtual machine with a session of the language, its output on the terminal or as JSON.

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "embedded_host/vm_context.h"
#include "language/session.h"
#include "runtime/vm.h"
#include "shell/call_watch.h"
#include "shell/display.h"

namespace shell {

// Leaves the shell: thrown by exit and quit.
struct ExitRequest {
  int status;
};

class Interpreter final : private language::Output {
 public:
  // Which statements without a semicolon show their value.
  enum class Echo { all, none };

  explicit Interpreter(Echo echo);
  ~Interpreter() override;

  enum class Outcome { done, failed, incomplete };

  // Runs a program; errors are reported on standard error. `incomplete` is told instead of an error
  // when `mayContinue` and more lines may complete the source. `fileName` is for messages.
  Outcome run(std::string_view source, std::string const& fileName = {}, bool mayContinue = false);

  // Writes the last value, if its statement did not end in a semicolon.
  void showLast();
  // Writes the last value as a line of JSON; `null` without one.
  void showLastAsJson();

  // Standard output is for one line of JSON from now on: text of print goes to standard error, and
  // an error is told on both.
  void answerInJson() { json_ = true; }

  DisplayStyle& style() noexcept { return style_; }
  language::Session& session() noexcept { return session_; }
  // Writes to standard output, where print and values go.
  void write(std::string_view text);

 private:
  void show(std::string_view name, txArray const& value) override;
  void print(std::string_view utf8) override;
  void printValue(txArray const& value) override;
  Outcome explain(std::string_view source, std::size_t from, std::string const& fileName,
                  bool mayContinue);
  void warn(foundation::core::except::MessageId const& id, std::string const& text);
  void beginStatement();
  std::optional<bool> drawnBefore(language::SourceError const& error) const;
  std::string streamsDrawnFrom();

  Echo echo_;
  DisplayStyle style_;
  bool json_ = false;
  runtime::Vm vm_;
  embedded_host::EnterVm entered_;
  language::Session session_;
  std::string_view source_;  // of the program that runs
  std::string fileName_;
  std::set<std::string> warned_;    // in the statement
  std::uint64_t drawnAtStart_ = 0;  // of the statement
  CallWatch* watch_ = nullptr;      // while something is explained
};

}  // namespace shell
