#pragma once

#include <string>
#include <vector>

namespace shell {

// tvrng doctor: draws every row of the golden table with every instruction set of this machine and
// several numbers of threads, and tells which are as they should be. Returns the exit status: 0
// when all are. Wrong options are a UsageError.
int runDoctorCommand(std::vector<std::string> const& words);

}  // namespace shell
