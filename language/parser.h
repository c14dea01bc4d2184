#pragma once

// Source text to a tree.

#include <string_view>

#include "language/ast.h"

namespace language {

// Parses a whole program before anything of it runs. Raises a SourceError; one that more input may
// mend (an open bracket, block or text at the end) is marked incomplete.
Block parse(std::string_view source);

}  // namespace language
