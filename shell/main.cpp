// tvrng: the random-number library at a prompt, in a script, in a pipe.

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <span>

#include "host/except.h"
#include "language/limits.h"
#include "shell/command_line.h"
#include "shell/doctor_command.h"
#include "shell/interpreter.h"
#include "shell/json.h"
#include "shell/options.h"
#include "shell/prompt.h"
#include "shell/report_command.h"
#include "shell/stream_command.h"
#include "shell/version.h"

namespace {

using shell::Interpreter;
using shell::Invocation;

constexpr int kProgramError = 1;
constexpr int kWrongUse = 2;

// A file that cannot be read; the message names it.
std::string readProgram(std::string const& file) {
  std::FILE* const input = file == "-" ? stdin : std::fopen(file.c_str(), "rb");
  if (!input) throw shell::UsageError(file + ": " + std::strerror(errno));
  std::string source;
  char buffer[1 << 16];
  std::size_t count = 0;
  // One byte more than the language takes is enough for it to refuse.
  while (source.size() <= language::kMaxSourceBytes &&
         (count = std::fread(buffer, 1, sizeof buffer, input)) > 0) {
    source.append(buffer, count);
  }
  bool const failed = std::ferror(input) != 0;
  int const reason = errno;
  if (input != stdin) std::fclose(input);
  if (failed) throw shell::UsageError(file + ": " + std::strerror(reason));
  return source;
}

int runPrograms(Invocation const& invocation) {
  bool const isScript = invocation.action == Invocation::Action::script;
  bool const echoes = isScript && !invocation.quiet && !invocation.json;
  std::vector<std::string> sources = invocation.texts;
  if (isScript) sources.push_back(readProgram(invocation.file));
  Interpreter interpreter(echoes ? Interpreter::Echo::all : Interpreter::Echo::none);
  if (invocation.longNumbers) interpreter.style().digits = 15;
  if (invocation.json) interpreter.answerInJson();
  std::string const name = !isScript                ? ""
                           : invocation.file == "-" ? "standard input"
                                                    : invocation.file;
  try {
    for (std::string const& source : sources) {
      if (interpreter.run(source, name) != Interpreter::Outcome::done) return kProgramError;
    }
  } catch (shell::ExitRequest const& request) {
    return request.status;
  }
  if (invocation.json) {
    interpreter.showLastAsJson();
  } else if (!isScript && !invocation.quiet) {
    interpreter.showLast();
  }
  return 0;
}

int runInvocation(Invocation const& invocation) {
  switch (invocation.action) {
    case Invocation::Action::version:
      std::fputs(shell::versionText().c_str(), stdout);
      return 0;
    case Invocation::Action::help:
      std::fputs(shell::kUsage, stdout);
      return 0;
    case Invocation::Action::stream:
      return shell::runStreamCommand(invocation.rest);
    case Invocation::Action::doctor:
      return shell::runDoctorCommand(invocation.rest);
    case Invocation::Action::report:
      return shell::runReportCommand(invocation.rest);
    case Invocation::Action::prompt: {
      Interpreter interpreter(invocation.quiet ? Interpreter::Echo::none : Interpreter::Echo::all);
      if (invocation.longNumbers) interpreter.style().digits = 15;
      return shell::runPrompt(interpreter, !invocation.quiet && isatty(STDIN_FILENO));
    }
    default:
      return runPrograms(invocation);
  }
}

// Whether a program reads the answer: also known where the words make no sense.
bool wantsJson(std::span<std::string const> words) {
  auto const end = std::ranges::find(words, "--");
  return std::find(words.begin(), end, "--json") != end;
}

void tell(shell::ErrorFacts const& error, bool json) {
  std::fprintf(stderr, "tvrng: %s\n", error.message.c_str());
  if (!error.hint.empty()) std::fprintf(stderr, "       %s\n", error.hint.c_str());
  if (json) std::puts(toJson(error).c_str());
}

}  // namespace

int main(int count, char** arguments) {
  std::vector<std::string> const words(arguments + (count > 0 ? 1 : 0), arguments + count);
  try {
    int const status = runInvocation(shell::parseCommandLine(words, isatty(STDIN_FILENO)));
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
      if (errno != EPIPE) std::fprintf(stderr, "tvrng: cannot write: %s\n", std::strerror(errno));
      return kProgramError;
    }
    return status;
  } catch (shell::UsageError const& error) {
    bool const ofCommand = !words.empty() && shell::isCommand(words[0]);
    std::string const help = "tvrng " + (ofCommand ? words[0] + ' ' : "") + "--help";
    tell({"TALVOR:command:usage", error.what(), help + " tells what there is"}, wantsJson(words));
    return kWrongUse;
  } catch (std::exception const& error) {
    auto const* known = dynamic_cast<foundation::core::except::AnyException const*>(&error);
    tell({known ? known->GetID() : "TALVOR:command:failed", error.what()}, wantsJson(words));
    return kProgramError;
  }
}
