#pragma once

// A fixed number of values, up to eight of them in place and more in host memory.

#include <array>
#include <cstddef>
#include <memory>
#include <span>

#include "host/allocator.h"

namespace builtins {

template <class T>
class InlineBuffer {
 public:
  // Values start value-initialised.
  explicit InlineBuffer(std::size_t size) : size_(size) {
    if (size <= kInPlace) return;
    // NOLINTNEXTLINE(bugprone-sizeof-expression): T is a pointer in places, and meant to be
    heap_ = static_cast<T*>(txMallocEx(size * sizeof(T)));
    std::uninitialized_value_construct_n(heap_, size);
  }
  ~InlineBuffer() {
    if (!heap_) return;
    std::destroy_n(heap_, size_);
    txFreeEx(heap_);
  }
  InlineBuffer(InlineBuffer const&) = delete;
  InlineBuffer& operator=(InlineBuffer const&) = delete;

  T* data() noexcept { return heap_ ? heap_ : inPlace_.data(); }
  std::span<T> view() noexcept { return {data(), size_}; }
  std::span<T const> view() const noexcept { return {heap_ ? heap_ : inPlace_.data(), size_}; }

 private:
  static constexpr std::size_t kInPlace = 8;

  std::size_t size_;
  T* heap_ = nullptr;
  std::array<T, kInPlace> inPlace_{};
};

}  // namespace builtins
