#pragma once

// A value in host memory with several owners.

#include <atomic>
#include <cstddef>
#include <utility>

#include "host/allocator.h"

namespace embedded_host {

// One owner. The owners may live on different threads; whoever wants to write asks for a value of
// its own first. A T with a member `farewell(Shared<T>)` is told once when its last owner goes; it
// lives on for as long as that owner, or a copy of it, is kept.
template <class T>
class Shared {
 public:
  template <class... Args>
  static Shared make(Args&&... args) {
    return Shared(new Box(std::forward<Args>(args)...));
  }
  Shared(Shared const& other) noexcept : box_(other.box_) {
    if (box_) box_->owners.fetch_add(1, std::memory_order_relaxed);
  }
  Shared(Shared&& other) noexcept : box_(std::exchange(other.box_, nullptr)) {}
  Shared& operator=(Shared other) noexcept {
    std::swap(box_, other.box_);
    return *this;
  }
  ~Shared() {
    if (!box_ || box_->owners.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    if constexpr (requires(T & value, Shared last) { value.farewell(std::move(last)); }) {
      if (!std::exchange(box_->saidFarewell, true)) {
        box_->owners.store(1, std::memory_order_relaxed);
        box_->value.farewell(Shared(box_));
        return;
      }
    }
    delete box_;
  }

  T const& operator*() const noexcept { return box_->value; }
  T const* operator->() const noexcept { return &box_->value; }

  // The value that all owners see, for writing.
  T& common() noexcept { return box_->value; }
  // For writing, a value that no other owner sees: a copy when there are others.
  T& own() {
    if (box_->owners.load(std::memory_order_acquire) != 1) *this = make(std::as_const(box_->value));
    return box_->value;
  }

  // Whether both own the same value, not whether their values are equal.
  bool operator==(Shared const&) const = default;

 private:
  struct Box {
    template <class... Args>
    explicit Box(Args&&... args) : value(std::forward<Args>(args)...) {}

    static void* operator new(std::size_t bytes) { return txMallocEx(bytes); }
    static void operator delete(void* memory) noexcept { txFreeEx(memory); }

    std::atomic<std::size_t> owners{1};
    bool saidFarewell = false;
    T value;
  };

  explicit Shared(Box* box) noexcept : box_(box) {}

  Box* box_;
};

}  // namespace embedded_host
