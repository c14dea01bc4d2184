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
#define TV_NOT_SANITIZED __attribute__((no_sanitize("thread"), noinline))
#else
#define TV_NOT_SANITIZED
#endif

namespace plugin_rng {

// Lives in the caller, around one parallel call: what was done before it is seen by the tasks, and
// what the tasks did is seen after it, however they ended.
template <class Work>
class ForkJoin {
 public:
  explicit ForkJoin(Work const& work) noexcept : work_(work) { release(&fork_); }
  ~ForkJoin() { acquire(&join_); }
  ForkJoin(ForkJoin const&) = delete;
  ForkJoin& operator=(ForkJoin const&) = delete;

  // What to give to the task library, which copies it: work(part) once the fork is known.
  auto body() noexcept { return Body{this}; }

 private:
  struct Body {
    ForkJoin* call;  // where the library keeps its copy, the sanitizer cannot know who wrote it
    template <class Part>
    TV_NOT_SANITIZED void operator()(Part const& part) const {
      call->run(part);
    }
  };

  struct AtEnd {
    char* join;
    ~AtEnd() { release(join); }
  };

  template <class Part>
  void run(Part const& part) {
    acquire(&fork_);
    const AtEnd atEnd{&join_};
    work_(part);
  }

#ifdef TV_THREAD_SANITIZER
  static void acquire(char* at) noexcept { __tsan_acquire(at); }
  static void release(char* at) noexcept { __tsan_release(at); }
#else
  static void acquire(char*) noexcept {}
  static void release(char*) noexcept {}
#endif

  Work const& work_;
  char fork_;  // never read or written: places that the sanitizer knows by their addresses
  char join_;
};

}  // namespace plugin_rng
