#include "shell/interpreter.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "embedded_host/object_system.h"
#include "language/fault.h"
#include "shell/error_text.h"
#include "shell/explain.h"
#include "shell/json.h"
#include "shell/shell_functions.h"
#include "shell/terminal.h"

namespace shell {

namespace {

bool isStream(txArray const& value) {
  embedded_host::ClassPtr const found = embedded_host::classOf(value);
  return found && found->name == "RandStream";
}

bool isInterruption(language::SourceError const& error) {
  return error.identifier() == "TALVOR:language:interrupted";
}

}  // namespace

Interpreter::Interpreter(Echo echo)
    : echo_(echo), entered_(vm_.context()), session_(vm_.context(), *this) {
  style_.width = terminalWidth(STDOUT_FILENO);
  registerShellFunctions(*this);
  watchCalls(vm_.context(), &watch_);
  session_.atStatement([this] { beginStatement(); });
  vm_.context().setWarningSink([this](auto const& id, std::string const& text) { warn(id, text); });
}

Interpreter::~Interpreter() { vm_.context().setWarningSink({}); }

Interpreter::Outcome Interpreter::run(std::string_view source, std::string const& fileName,
                                      bool mayContinue) {
  std::size_t const explained = explainedFrom(source);
  if (explained != std::string_view::npos) return explain(source, explained, fileName, mayContinue);
  source_ = source;
  fileName_ = fileName;
  beginStatement();
  try {
    session_.run(source);
    return Outcome::done;
  } catch (language::SourceError const& error) {
    if (mayContinue && error.incomplete()) return Outcome::incomplete;
    std::fflush(stdout);
    std::optional<bool> const drawn = drawnBefore(error);
    bool const namesStreams = isInterruption(error) && drawn.value_or(false);
    std::string const text = describeError(error, {source, fileName, terminalWidth(STDERR_FILENO)},
                                           drawn, namesStreams ? streamsDrawnFrom() : "");
    std::fwrite(text.data(), 1, text.size(), stderr);
    if (json_) write(toJson(factsOf(error, source, drawn.value_or(false))) + '\n');
    return Outcome::failed;
  }
}

// The command gives way to blanks, so that places in messages stay what they are.
Interpreter::Outcome Interpreter::explain(std::string_view source, std::size_t from,
                                          std::string const& fileName, bool mayContinue) {
  std::vector<Explanation::Named> streams;
  for (auto const& [name, value] : session_.variables()) {
    if (isStream(*value)) streams.push_back({name, txShare(*value)});
  }
  streams.push_back({"the global stream", vm_.call("RandStream.global")});
  std::erase_if(streams,
                [](Explanation::Named const& named) { return !streamBehind(named.object.get()); });
  Explanation explanation(std::move(streams));
  struct Watching {
    explicit Watching(CallWatch*& slot) : slot_(slot) {}
    ~Watching() { slot_ = nullptr; }
    CallWatch*& slot_;
  } const watching(watch_);
  watch_ = &explanation;
  Outcome const outcome =
      run(std::string(from, ' ') + std::string(source.substr(from)), fileName, mayContinue);
  source_ = {};  // the blanked text ends here
  if (outcome != Outcome::incomplete) print(explanation.text());
  return outcome;
}

void Interpreter::beginStatement() {
  warned_.clear();
  drawnAtStart_ = randstream::drawnInThread();
}

// That nothing was drawn is worth a word where a call of the library was refused; that something
// was, always.
std::optional<bool> Interpreter::drawnBefore(language::SourceError const& error) const {
  bool const drawn = randstream::drawnInThread() != drawnAtStart_;
  bool const ofLanguage = error.identifier().starts_with("TALVOR:language:");
  if (!drawn && ofLanguage && !isInterruption(error)) return std::nullopt;
  return drawn;
}

// The streams that the statement has drawn from, by the names that the user has for them.
std::string Interpreter::streamsDrawnFrom() {
  std::vector<randstream const*> known;
  std::string names;
  auto const look = [&](std::string const& name, randstream const* stream) {
    if (!stream || stream->drawCounts().latest <= drawnAtStart_) return;
    if (std::ranges::find(known, stream) != known.end()) return;
    known.push_back(stream);
    names += (names.empty() ? "" : ", ") + name;
  };
  look("the global stream", streamBehind(nullptr));
  for (auto const& [name, value] : session_.variables()) {
    if (isStream(*value)) look(name, streamBehind(value.get()));
  }
  return names.empty() ? "a stream that no variable holds" : names;
}

// A warning that a loop repeats is told once a statement.
void Interpreter::warn(foundation::core::except::MessageId const& id, std::string const& text) {
  try {
    if (!warned_.insert(id.identifier() + text).second) return;
    std::fflush(stdout);
    std::string const described = describeWarning(
        id, text, {source_, fileName_, terminalWidth(STDERR_FILENO)}, session_.callInProgress());
    std::fwrite(described.data(), 1, described.size(), stderr);
  } catch (std::exception const&) {
    std::fputs("  warning\n", stderr);
  }
}

void Interpreter::write(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

void Interpreter::show(std::string_view name, txArray const& value) {
  if (echo_ == Echo::all) write(displayValue(name, value, style_));
}

void Interpreter::print(std::string_view utf8) {
  std::fwrite(utf8.data(), 1, utf8.size(), json_ ? stderr : stdout);
}

void Interpreter::printValue(txArray const& value) { print(displayValue("", value, style_)); }

void Interpreter::showLast() {
  if (session_.lastValue() && session_.lastShown()) {
    write(displayValue(session_.lastName(), *session_.lastValue(), style_));
  }
}

void Interpreter::showLastAsJson() {
  write((session_.lastValue() ? toJson(*session_.lastValue()) : std::string("null")) + '\n');
}

}  // namespace shell
