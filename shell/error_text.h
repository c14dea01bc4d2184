#pragma once

// Errors and warnings as people read them: the message, the line with a caret under the part at
// fault, what would work, the identifier, and whether anything was drawn.

#include <optional>
#include <string>
#include <string_view>

#include "host/except.h"
#include "language/fault.h"
#include "shell/json.h"

namespace shell {

struct ErrorPlace {
  std::string_view source;
  std::string fileName = {};  // "" at the prompt: the line's number is not told then
  int width = 80;
};

// `drawn`: whether the failing statement had drawn before it failed; nothing when that says
// nothing. `streams`: those that it drew from, "" when they need not be told.
std::string describeError(language::SourceError const& error, ErrorPlace const& place,
                          std::optional<bool> drawn, std::string const& streams = {});

// The same without a program that it stands in: for the commands of tvrng.
std::string describeError(foundation::core::except::AnyException const& error);

// The same for programs. `source` may be empty.
ErrorFacts factsOf(language::SourceError const& error, std::string_view source, bool drawn);

std::string describeWarning(foundation::core::except::MessageId const& id, std::string const& text,
                            ErrorPlace const& place, std::optional<language::SourceSpan> call);

}  // namespace shell
