#include "shell/prompt.h"

#include <unistd.h>

#include <csignal>
#include <string>

#include "embedded_host/interrupt.h"
#include "shell/line_source.h"
#include "shell/terminal.h"

namespace shell {

namespace {

// While a statement runs, Ctrl-C ends it; while a line is edited, it is a key like any other.
extern "C" void onInterrupt(int) { embedded_host::requestInterrupt(); }

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
      continue;
    }
    if (input == LineSource::Input::cancelled) {
      source.clear();
      continue;
    }
    source += line;
    interpreter.style().width = terminalWidth(STDOUT_FILENO);
    try {
      if (interpreter.run(source, "", true) == Interpreter::Outcome::incomplete) continue;
    } catch (ExitRequest const& request) {
      lines->remember(source);
      return request.status;
    }
    lines->remember(source);
    source.clear();
  }
}

}  // namespace shell
