#pragma once

namespace shell {

class Interpreter;

// Adds help, generators, whos, format, histogram, chart, explain, exit and quit to the functions of
// the session's VM.
void registerShellFunctions(Interpreter& interpreter);

}  // namespace shell
