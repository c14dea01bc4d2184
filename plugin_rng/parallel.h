#pragma once

// The threads of large fills: oneTBB's, or none but the caller where the library is built without
// (TV_THREADS=OFF). The one header that knows which.

#include <cstddef>

#ifndef TV_SERIAL
#include <tbb/blocked_range.h>
#include <tbb/enumerable_thread_specific.h>
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <stdexcept>

#include "plugin_rng/fork_join.h"
#include "plugin_rng/thread_supply.h"
#include "tfl_rng/float_environment.h"
#endif

namespace plugin_rng {

// How a fill is cut into leaves.
struct Split {
  std::size_t grain;
  // Leaves are longer than half the grain, as idle threads ask; else they are halved to the grain.
  bool adaptive;
};

#ifdef TV_SERIAL

inline constexpr bool kThreads = false;

inline std::size_t usableThreads() { return 1; }

template <class Body>
void withThreads(std::size_t /*count*/, Body&& body) {
  body();
}

template <class Worker, class Leaf>
void forEachLeaf(std::size_t n, Split /*split*/, Leaf const& leaf) {
  Worker worker;
  leaf(worker, std::size_t{0}, n);
}

#else

inline constexpr bool kThreads = true;

// Threads that a fill can use: the caller alone where the others are not to be had.
inline std::size_t usableThreads() {
  const auto arena = static_cast<std::size_t>(tbb::this_task_arena::max_concurrency());
  const auto wanted = std::min(
      arena, tbb::global_control::active_value(tbb::global_control::max_allowed_parallelism));
  return wanted > 1 && canHaveThreads(wanted - 1) ? wanted : 1;
}

// Runs body() with `count` threads to be used, also where the machine has fewer cores. They stay
// from one call to the next: those that are ending count where a user may have few.
template <class Body>
void withThreads(std::size_t count, Body&& body) {
  static tbb::task_scheduler_handle const kept{tbb::attach{}};
  tbb::global_control const limit(tbb::global_control::max_allowed_parallelism, count);
  tbb::task_arena arena(static_cast<int>(count));
  arena.execute(body);
}

// Calls leaf(worker, begin, end) for parts that make up [0, n), each thread with a `Worker` of its
// own. Isolated on both sides: no cancellation from outside can end it half done, and a waiting
// thread takes no outer task. An exception of a leaf reaches the caller.
template <class Worker, class Leaf>
void forEachLeaf(std::size_t n, Split split, Leaf const& leaf) {
  using Range = tbb::blocked_range<std::size_t>;
  tbb::enumerable_thread_specific<Worker> workers;
  tbb::task_group_context context(tbb::task_group_context::isolated);
  const auto part = [&](Range const& range) {
    const tfl_rng::FloatEnvironment environment;  // a worker has that of whoever started it
    leaf(workers.local(), range.begin(), range.end());
  };
  {
    const Range all(0, n, split.grain);
    ForkJoin call(part);
    tbb::this_task_arena::isolate([&] {
      if (split.adaptive) {
        tbb::parallel_for(all, call.body(), tbb::auto_partitioner(), context);
      } else {
        tbb::parallel_for(all, call.body(), tbb::simple_partitioner(), context);
      }
    });
  }
  if (context.is_group_execution_cancelled()) {
    throw std::runtime_error("a parallel fill was cancelled");
  }
}

#endif

}  // namespace plugin_rng
