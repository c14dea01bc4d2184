#include "shell/prompt.h"

#include <unistd.h>

#include <csignal>
#include <string>

#include "shell/line_source.h"
#include "shell/terminal.h"

namespace shell {

namespace {

// While a statement runs, Ctrl-C ends it; while a line is edited, it is a key like any other.
extern "C" void onInterrupt(int) { language::requestInterrupt(); }

// `help rand` and `format long`, the two commands that are typed most, need no parentheses.
std::string expandCommand(std::string const& line, language::Session const& session) {
  for (char const* const command : {"help", "format"}) {
    std::string const lead = std::string(command) + ' ';
    if (!line.starts_with(lead) || session.variable(command)) continue;
    std::size_t const from = line.find_first_not_of(' ', lead.size());
    std::size_t const to = line.find_last_not_of(" \n;");
    if (from == std::string::npos || to < from) return std::string(command) + '\n';
    std::string const word = line.substr(from, to - from + 1);
    if (word.find_first_of(" '\"(=") != std::string::npos) continue;
    return std::string(command) + "('" + word + "')\n";
  }
  return line;
}

}  // namespace

int runPrompt(Interpreter& interpreter, bool greet) {
  struct sigaction action {};
  action.sa_handler = onInterrupt;
  action.sa_flags = SA_RESTART;
  sigaction(SIGINT, &action, nullptr);
  if (greet) {
    interpreter.write("tvrng " TV_VERSION
                      ": random numbers at a prompt. Try rand(2,3); help lists "
                      "more; Ctrl-D leaves.\n");
  }
  auto const lines = makeLineSource(interpreter.session());
  std::string source;
  std::string typed;  // the same as it was typed, for the history
  for (;;) {
    std::fflush(stdout);
    std::string line;
    auto const input = lines->read(!source.empty(), line);
    if (input == LineSource::Input::end) {
      if (source.empty()) {
        if (isatty(STDIN_FILENO)) std::fputc('\n', stdout);
        return 0;
      }
      interpreter.run(source);  // tells what is missing
      source.clear();
      typed.clear();
      continue;
    }
    if (input == LineSource::Input::cancelled) {
      source.clear();
      typed.clear();
      continue;
    }
    typed += line;
    source += source.empty() ? expandCommand(line, interpreter.session()) : line;
    interpreter.style().width = terminalWidth(STDOUT_FILENO);
    try {
      if (interpreter.run(source, "", true) == Interpreter::Outcome::incomplete) continue;
    } catch (ExitRequest const& request) {
      lines->remember(typed);
      return request.status;
    }
    lines->remember(typed);
    source.clear();
    typed.clear();
  }
}

}  // namespace shell
