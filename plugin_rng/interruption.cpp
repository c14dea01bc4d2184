#include "plugin_rng/interruption.h"

#include <stdexcept>

namespace plugin_rng {
namespace {

constinit std::atomic<bool> never = false;
constinit std::atomic<void (*)()> raiser = nullptr;

}  // namespace

constinit std::atomic<std::atomic<bool> const*> detail::interruptionRequested = &never;

void detail::raiseInterruption() {
  raiser.load()();
  throw std::logic_error("whoever ends draws throws");
}

void endDrawsWhen(std::atomic<bool> const* requested, void (*raise)()) noexcept {
  raiser = raise;
  detail::interruptionRequested = requested;
}

}  // namespace plugin_rng
