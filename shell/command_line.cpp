#include "shell/command_line.h"

#include <fmt/format.h>

#include <algorithm>

#include "shell/options.h"

namespace shell {

char const kUsage[] =
    "usage: tvrng [options]               a prompt, or a program from standard input\n"
    "       tvrng [options] FILE          runs a program; - is standard input\n"
    "       tvrng [options] -e TEXT ...   runs the texts in one session and shows the last value\n"
    "       tvrng stream [options]        writes random numbers; see tvrng stream --help\n"
    "       tvrng doctor                  checks the numbers that this machine draws\n"
    "       tvrng report [options]        looks at a generator; see tvrng report --help\n"
    "\n"
    "  -e, --eval TEXT  a program; may be given several times\n"
    "  -i, --interactive  as at the prompt, also when standard input is a pipe: statements are\n"
    "                   repeated before their results, and an error ends none but its own\n"
    "  --json           the last value as one line of JSON: class, size, complex, data\n"
    "  --long           numbers with 15 significant digits\n"
    "  --quiet          no greeting, and no values but those of print and --json\n"
    "  --version        version, sequence version, compiler, instruction set of the kernels\n"
    "  --help           this text\n"
    "\n"
    "Exit status: 0, 1 for an error in the program, 2 for wrong use of the command.\n";

namespace {

struct Command {
  std::string_view name;
  Invocation::Action action;
};
constexpr Command kCommands[] = {{"stream", Invocation::Action::stream},
                                 {"report", Invocation::Action::report},
                                 {"doctor", Invocation::Action::doctor}};

Command const* findCommand(std::string_view word) {
  auto const* const found = std::ranges::find(kCommands, word, &Command::name);
  return found == std::end(kCommands) ? nullptr : found;
}

}  // namespace

bool isCommand(std::string_view word) { return findCommand(word) != nullptr; }

Invocation parseCommandLine(std::vector<std::string> const& words, bool inputIsTerminal) {
  Invocation invocation;
  if (Command const* const command = words.empty() ? nullptr : findCommand(words.front())) {
    invocation.action = command->action;
    invocation.rest.assign(words.begin() + 1, words.end());
    return invocation;
  }
  bool version = false;
  bool help = false;
  Option const rows[] = {
      {"--eval", "-e", [&](std::string const& text) { invocation.texts.push_back(text); }},
      {"--interactive", "-i", &invocation.interactive},
      {"--json", "", &invocation.json},
      {"--quiet", "-q", &invocation.quiet},
      {"--long", "", &invocation.longNumbers},
      {"--version", "", &version},
      {"--help", "-h", &help}};
  std::vector<std::string> const files = readOptions("tvrng", words, rows);
  if (version || help) {
    invocation.action = version ? Invocation::Action::version : Invocation::Action::help;
    return invocation;
  }
  if (files.size() > 1) {
    throw UsageError(fmt::format("one program file at a time: {} or {}", files[0], files[1]));
  }
  if (!files.empty()) invocation.file = files[0];
  if (invocation.interactive) {
    if (!invocation.texts.empty() || !invocation.file.empty() || invocation.json) {
      throw UsageError("--interactive goes with no program and no --json");
    }
  } else if (!invocation.texts.empty()) {
    if (!invocation.file.empty()) throw UsageError("-e and a program file do not go together");
    invocation.action = Invocation::Action::text;
  } else if (!invocation.file.empty()) {
    invocation.action = Invocation::Action::script;
  } else if (!inputIsTerminal || invocation.json) {
    invocation.action = Invocation::Action::script;
    invocation.file.assign(1, '-');
  }
  return invocation;
}

}  // namespace shell
