#pragma once

#include "shell/interpreter.h"

namespace shell {

// Reads and runs statements until the input ends or exit is called; returns the exit status. Lines
// are edited with history and completion, kept in $XDG_STATE_HOME/tvrng/history (by default
// ~/.local/state/tvrng/history).
int runPrompt(Interpreter& interpreter, bool greet);

}  // namespace shell
