#pragma once

#include <string>

// The folder tests/ of the tree that was built, where known answers and tables of calls lie.
std::string const& dataFolder();
