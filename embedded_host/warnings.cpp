#include <cstdio>
#include <string>

#include "embedded_host/messages.h"
#include "embedded_host/vm_context.h"

void txWarningMsgId(foundation::core::except::MessageId const& id) {
  using embedded_host::VmContext;
  std::string const text = renderMessage(id);
  VmContext const* const vm = VmContext::current();
  if (vm && vm->warningSink()) return vm->warningSink()(id, text);
  std::fprintf(stderr, "Warning: %s [%s]\n", text.c_str(), id.identifier().c_str());
}
