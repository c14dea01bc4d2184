#pragma once

// The host's allocator. Everything that crosses the border between the host and the library
// (arrays, streams, strings) comes from it and goes back to it, on any thread, in a VM or not.

#include <cstddef>
#include <limits>
#include <memory>
#include <type_traits>

#include "host/export.h"

// Returns `bytes` bytes, aligned for any vector type of the machine (64 bytes).
// Never returns null, also for 0 bytes. Failure is the host error "TALVOR:nomem".
TV_EXPORT void* txMallocEx(std::size_t bytes);

// Releases what txMallocEx returned; null is allowed.
TV_EXPORT void txFreeEx(void* memory) noexcept;

struct txFree_deleter {
  void operator()(void* memory) const noexcept { txFreeEx(memory); }
};

// A block of host memory for `T`, uninitialised, released on every exit.
template <class T>
using txBuffer = std::unique_ptr<T[], txFree_deleter>;

template <class T>
txBuffer<T> txMakeBuffer(std::size_t count) {
  static_assert(std::is_trivially_default_constructible_v<T> &&
                std::is_trivially_destructible_v<T>);
  // A count beyond the address space becomes the largest request, which fails as any other.
  constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max() / sizeof(T);
  return txBuffer<T>(static_cast<T*>(txMallocEx((count < kMost ? count : kMost) * sizeof(T))));
}
