#pragma once

namespace language {

// True once after requestInterrupt (language/session.h).
bool takeInterrupt() noexcept;

}  // namespace language
