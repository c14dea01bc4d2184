#pragma once

#include <string>
#include <vector>

namespace shell {

// tvrng stream: writes the numbers of one stream to standard output, as text or as raw
// little-endian values. Returns the exit status; wrong options are a UsageError.
int runStreamCommand(std::vector<std::string> const& words);

}  // namespace shell
