#pragma once

// Source text to a tree.

#include <span>
#include <string>
#include <string_view>

#include "language/ast.h"

namespace language {

// Parses a whole program before anything of it runs. Raises a SourceError; one that more input may
// mend (an open bracket, block or text at the end) is marked incomplete. A statement `name word`,
// with one of the names in `commands`, means name('word').
Block parse(std::string_view source, std::span<std::string const> commands);

}  // namespace language
