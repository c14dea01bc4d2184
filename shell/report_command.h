#pragma once

#include <string>
#include <vector>

namespace shell {

// `tvrng report ...`: the words behind it; returns the exit status. Wrong words are a UsageError.
int runReportCommand(std::vector<std::string> const& words);

}  // namespace shell
