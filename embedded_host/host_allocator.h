#pragma once

// The standard containers' way to the host's allocator.

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "host/allocator.h"

namespace embedded_host {

template <class T>
struct HostAllocator {
  using value_type = T;

  HostAllocator() = default;
  template <class U>
  HostAllocator(HostAllocator<U> const&) noexcept {}  // NOLINT(google-explicit-constructor)

  T* allocate(std::size_t count) {
    // A count beyond the address space becomes the largest request, which fails as any other.
    constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max() / sizeof(T);
    return static_cast<T*>(txMallocEx(count > kMost ? kMost * sizeof(T) : count * sizeof(T)));
  }
  void deallocate(T* memory, std::size_t) noexcept { txFreeEx(memory); }

  template <class U>
  bool operator==(HostAllocator<U> const&) const noexcept {
    return true;
  }
};

template <class T>
using HostVector = std::vector<T, HostAllocator<T>>;
using HostText = std::basic_string<char16_t, std::char_traits<char16_t>, HostAllocator<char16_t>>;

}  // namespace embedded_host
