#include "embedded_host/interrupt.h"

#include "embedded_host/messages.h"

namespace embedded_host {

constinit std::atomic<bool> detail::interruptRequested = false;

namespace {
constinit std::atomic<int> running = 0;
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);
}  // namespace

void requestInterrupt() noexcept {
  if (running > 0) detail::interruptRequested = true;
}

void raiseInterrupted() { raiseHostError("TALVOR:language:interrupted"); }

RunningProgram::RunningProgram() noexcept {
  if (running++ == 0) detail::interruptRequested = false;
}
RunningProgram::~RunningProgram() {
  if (--running == 0) detail::interruptRequested = false;
}

}  // namespace embedded_host
