#pragma once

// The host's error and warning services, and its message catalogue.

#include <exception>
#include <string>

#include "host/except.h"
#include "host/export.h"

// The text of a message: the catalogue's, with the arguments filled in. Never throws for an
// unknown identifier; its text then says so. Called on any thread, in a VM or not.
TV_EXPORT std::string renderMessage(foundation::core::except::MessageId const& id);

// Raises the error of a key.
template <class Key>
[[noreturn]] void txErrMsgId(Key const& key) {
  throw foundation::core::except::Exception<Key, std::exception, void>(key, renderMessage(key));
}

// Issues a warning and returns.
TV_EXPORT void txWarningMsgId(foundation::core::except::MessageId const& id);

// The host's standard errors for argument counts.
namespace matrix::detail {
[[noreturn]] TV_EXPORT void error_maxlhs();  // too many outputs
[[noreturn]] TV_EXPORT void error_maxrhs();  // too many inputs
[[noreturn]] TV_EXPORT void error_minrhs();  // too few inputs
}  // namespace matrix::detail
