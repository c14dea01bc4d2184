#pragma once

#include <memory>

#include "language/session.h"
#include "shell/line_source.h"

namespace shell {

// The editor on a terminal, with completion and a history that is kept.
std::unique_ptr<LineSource> makeLineEditor(language::Session const& session);

}  // namespace shell
