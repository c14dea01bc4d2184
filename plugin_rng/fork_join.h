#pragma once

// What a task library promises about its threads, told to the thread sanitizer. Debian's oneTBB is
// not built for the sanitizer, which therefore sees neither that a task starts after the call that
// made it nor that the call returns after its tasks. In other builds nothing of this remains.

#if defined(__SANITIZE_THREAD__)
#define TV_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define TV_THREAD_SANITIZER 1
#endif
#endif

#ifdef TV_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

namespace plugin_rng {

// Lives in the caller around a parallel call: what was done before it is seen by the tasks, and
// what the tasks did is seen after it, however they ended.
class ForkJoin {
 public:
  ForkJoin() noexcept { release(&fork_); }
  ~ForkJoin() { acquire(&join_); }
  ForkJoin(ForkJoin const&) = delete;
  ForkJoin& operator=(ForkJoin const&) = delete;

  // Lives in a task, around all of its work.
  class Task {
   public:
    explicit Task(ForkJoin& call) noexcept : call_(call) { acquire(&call_.fork_); }
    ~Task() { release(&call_.join_); }
    Task(Task const&) = delete;
    Task& operator=(Task const&) = delete;

   private:
    ForkJoin& call_;
  };

 private:
#ifdef TV_THREAD_SANITIZER
  static void acquire(char* at) noexcept { __tsan_acquire(at); }
  static void release(char* at) noexcept { __tsan_release(at); }
#else
  static void acquire(char*) noexcept {}
  static void release(char*) noexcept {}
#endif

  char fork_;  // never read or written: places that the sanitizer knows by their addresses
  char join_;
};

}  // namespace plugin_rng
