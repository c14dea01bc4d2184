#pragma once

// Source text to tokens.

#include <string_view>
#include <vector>

#include "language/token.h"

namespace language {

// The tokens of `source`, comments and line continuations left out, the last one endOfSource.
// Raises a SourceError for what is no word of the language: unterminated texts, NUL bytes, invalid
// UTF-8, malformed numbers, too long a source.
std::vector<Token> tokenize(std::string_view source);

}  // namespace language
