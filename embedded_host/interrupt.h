#pragma once

// The request to end what a program does, as by Ctrl-C. Work that may take long looks for it every
// some ten thousand elements, between changes that others can see.

#include <algorithm>
#include <atomic>
#include <cstdint>

#include "host/export.h"

namespace embedded_host {

namespace detail {
TV_EXPORT extern std::atomic<bool> interruptRequested;
}

// Ends the running programs of this process with the error "TALVOR:language:interrupted"; may be
// called from a signal handler. Does nothing while none runs.
TV_EXPORT void requestInterrupt() noexcept;

// Set from the request to the end of the last program that runs.
inline std::atomic<bool> const& interruptRequestFlag() noexcept {
  return detail::interruptRequested;
}
inline bool interruptRequested() noexcept {
  return detail::interruptRequested.load(std::memory_order_relaxed);
}

[[noreturn]] TV_EXPORT void raiseInterrupted();
inline void checkInterrupt() {
  if (interruptRequested()) [[unlikely]]
    raiseInterrupted();
}

inline constexpr std::uint64_t kBetweenLooks = std::uint64_t{1} << 16;

// Calls body(begin, end) for the parts of [0, n), and looks for an interrupt before each.
template <class Body>
void inParts(std::uint64_t n, Body&& body) {
  for (std::uint64_t begin = 0; begin < n; begin += kBetweenLooks) {
    checkInterrupt();
    body(begin, std::min(n, begin + kBetweenLooks));
  }
}

// Calls visit(i) for i from 0 to n - 1, and looks for an interrupt now and then.
template <class Visit>
void each(std::uint64_t n, Visit visit) {
  inParts(n, [&](std::uint64_t begin, std::uint64_t end) {
    for (std::uint64_t i = begin; i < end; ++i) visit(i);
  });
}

// A program runs while this lives.
class TV_EXPORT RunningProgram {
 public:
  RunningProgram() noexcept;
  ~RunningProgram();
  RunningProgram(RunningProgram const&) = delete;
  RunningProgram& operator=(RunningProgram const&) = delete;
};

}  // namespace embedded_host
