#pragma once

// How the program around this library ends a draw that takes longer than its user wants to wait.

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>

#include "host/export.h"

namespace plugin_rng {

// From now on draws look at `*requested` now and then, and call `raise`, which throws, when it is
// set. A stream whose draw ends like this is back where it was before, or, with a generator from
// elsewhere, where its last request has left it. For the whole process; until it is called nobody
// asks to end a draw.
TV_EXPORT void endDrawsWhen(std::atomic<bool> const* requested, void (*raise)()) noexcept;

namespace detail {
extern constinit std::atomic<std::atomic<bool> const*> interruptionRequested;
[[noreturn]] void raiseInterruption();
}  // namespace detail

inline bool isInterrupted() noexcept {
  return detail::interruptionRequested.load(std::memory_order_relaxed)
      ->load(std::memory_order_relaxed);
}
inline void checkInterruption() {
  if (isInterrupted()) [[unlikely]]
    detail::raiseInterruption();
}

// Draws that nobody waits long for: some milliseconds. An even number, so that cutting a request
// there changes no value.
inline constexpr std::size_t kUninterrupted = 262'000;

// Calls body(at, length) for the consecutive parts of [0, n), each of kUninterrupted but the last.
template <class Body>
void inInterruptibleParts(std::uint64_t n, Body&& body) {
  for (std::uint64_t at = 0; at < n; at += kUninterrupted) {
    if (at > 0) checkInterruption();
    body(static_cast<std::size_t>(at),
         static_cast<std::size_t>(std::min<std::uint64_t>(kUninterrupted, n - at)));
  }
}

}  // namespace plugin_rng
