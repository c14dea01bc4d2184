// Preloaded before the embedded host by check_coverage.py: notes the identifier of every error and
// warning that is raised, one a line, in the file that RECORD_MESSAGES names.

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "embedded_host/messages.h"

namespace {

using foundation::core::except::MessageId;

void note(MessageId const& id) {
  static std::FILE* const file = std::fopen(std::getenv("RECORD_MESSAGES"), "a");
  std::fprintf(file, "%s\n", id.identifier().c_str());
  std::fflush(file);
}

// The host's own function of that mangled name.
template <class Function>
Function* hosts(char const* symbol) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, symbol));
}

}  // namespace

TV_EXPORT std::string renderMessage(MessageId const& id) {
  note(id);
  static auto* const next = hosts<std::string(MessageId const&)>(
      "_Z13renderMessageB5cxx11RKN10foundation4core6except9MessageIdE");
  return next(id);
}

TV_EXPORT void txWarningMsgId(MessageId const& id) {
  note(id);
  static auto* const next =
      hosts<void(MessageId const&)>("_Z14txWarningMsgIdRKN10foundation4core6except9MessageIdE");
  next(id);
}

// The host's own errors, whose texts it fetches without leaving its library.
void embedded_host::raiseHostKey(HostKey const& key) {
  note(key);
  static auto* const next =
      hosts<void(HostKey const&)>("_ZN13embedded_host12raiseHostKeyERKNS_7HostKeyE");
  next(key);
  std::abort();
}
