#pragma once

#include "host/export.h"

namespace language {

// True once after requestInterrupt (language/session.h).
TV_EXPORT bool takeInterrupt() noexcept;

}  // namespace language
