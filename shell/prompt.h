#pragma once

#include "shell/interpreter.h"

namespace shell {

// Reads and runs statements until the input ends or exit is called; returns the exit status. On a
// terminal lines are edited, with completion, and with a history kept in
// $XDG_STATE_HOME/tvrng/history (by default
// ~/.local/state/tvrng/history). From a pipe each line is written behind its prompt, so that the
// output reads as a terminal would show it.
int runPrompt(Interpreter& interpreter, bool greet);

}  // namespace shell
