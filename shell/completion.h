#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "language/session.h"

namespace shell {

// What may stand at the end of `line` (the text before the cursor): names of functions, variables
// and classes, inside quotes those of generators and normal methods, after a point properties and
// methods. `start` is where the completed word begins.
struct Completion {
  std::size_t start;
  std::vector<std::string> words;  // sorted, without repetition
};
Completion complete(std::string_view line, language::Session const& session);

// The longest beginning that all words share.
std::string commonPrefix(std::vector<std::string> const& words);

}  // namespace shell
