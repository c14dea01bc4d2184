#pragma once

// Finds out when an object that one thread may change at a time is used by two. Threads that only
// read may be as many as they like.

#include <atomic>
#include <cstdint>

class OneUser {
 public:
  OneUser() noexcept = default;
  // Who is inside an object is no part of what is copied from it.
  OneUser(OneUser const&) noexcept {}
  OneUser& operator=(OneUser const&) noexcept { return *this; }

  // A changing thread's stay inside the object, from call to return; stays of one thread may nest.
  // A stay that finds another thread inside is not alone, and leaves no trace.
  class Stay {
   public:
    explicit Stay(OneUser& object) noexcept : object_(object) {
      std::uint32_t inside = kNobody;
      std::uint32_t const self = threadNumber();
      isFirst_ = object_.inside_.compare_exchange_strong(inside, self, std::memory_order_relaxed);
      isAlone_ = isFirst_ || inside == self;
    }
    ~Stay() {
      if (isFirst_) object_.inside_.store(kNobody, std::memory_order_relaxed);
    }
    Stay(Stay const&) = delete;
    Stay& operator=(Stay const&) = delete;

    bool isAlone() const noexcept { return isAlone_; }

   private:
    OneUser& object_;
    bool isFirst_;
    bool isAlone_;
  };

  // For a thread that reads: that no other one is inside.
  bool mayRead() const noexcept {
    std::uint32_t const inside = inside_.load(std::memory_order_relaxed);
    return inside == kNobody || inside == threadNumber();
  }

 private:
  static constexpr std::uint32_t kNobody = 0;

  // Four bytes, which find room between the members of a stream.
  static std::uint32_t threadNumber() noexcept {
    static std::atomic<std::uint32_t> last = kNobody;
    thread_local std::uint32_t const number = ++last;
    return number;
  }

  // Relaxed: it is to find disorder, not to make order that a sanitizer would then believe in.
  std::atomic<std::uint32_t> inside_ = kNobody;
};
