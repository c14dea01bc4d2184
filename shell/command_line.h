#pragma once

// What the words behind `tvrng` mean.

#include <string>
#include <string_view>
#include <vector>

namespace shell {

struct Invocation {
  enum class Action { prompt, script, text, stream, report, doctor, version, help };

  Action action = Action::prompt;
  bool json = false;
  bool quiet = false;
  bool longNumbers = false;
  bool interactive = false;        // statement by statement, also from a pipe
  std::string file;                // script; "-" is standard input
  std::vector<std::string> texts;  // -e, in order
  std::vector<std::string> rest;   // words behind the name of a command
};

// Whether a first word names a command with options of its own, such as `stream`.
bool isCommand(std::string_view word);

// `inputIsTerminal` decides what no word at all means: the prompt, or a script from standard input.
Invocation parseCommandLine(std::vector<std::string> const& words, bool inputIsTerminal);

extern char const kUsage[];

}  // namespace shell
