#pragma once

#include <memory>
#include <string>

#include "language/session.h"

namespace shell {

// Where the prompt's lines come from.
class LineSource {
 public:
  enum class Input { line, cancelled, end };

  virtual ~LineSource() = default;
  // The next line with its newline; `continues` when it goes on with an unfinished statement.
  virtual Input read(bool continues, std::string& line) = 0;
  // Keeps a statement for later recall.
  virtual void remember(std::string const& source) = 0;
};

// What stands before a line.
char const* promptText(bool continues);

// An editor on a terminal where the shell is built with one, a plain reader of standard input
// elsewhere.
std::unique_ptr<LineSource> makeLineSource(language::Session const& session);

}  // namespace shell
