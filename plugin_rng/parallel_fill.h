#pragma once

// Large fills on all cores of the machine, with exactly the numbers of a serial fill.

#include <tbb/blocked_range.h>
#include <tbb/enumerable_thread_specific.h>
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <stdexcept>

#include "plugin_rng/fork_join.h"
#include "plugin_rng/large_results.h"
#include "plugin_rng/thread_supply.h"

namespace plugin_rng {

// How a fill is cut into leaves.
struct Split {
  std::size_t grain;
  bool
      adaptive;  // leaves longer than half the grain, as idle threads ask; else halved to the grain
};

inline constexpr Split kUniformSplit{8192, false};

// A thread that fills alone draws parts of this length: long enough that starting one costs
// nothing, and still in the cache when they are finished.
inline constexpr std::size_t kAlonePart = 32768;

// Threads that a fill can use: the caller alone where the others are not to be had.
inline std::size_t usableThreads() {
  const auto arena = static_cast<std::size_t>(tbb::this_task_arena::max_concurrency());
  const auto wanted = std::min(
      arena, tbb::global_control::active_value(tbb::global_control::max_allowed_parallelism));
  return wanted > 1 && canHaveThreads(wanted - 1) ? wanted : 1;
}

// Fills out[0, n) as core.randu(out, n) and one `finish(part, length)` over every part of it would,
// and leaves `core` where that fill would have left it.
//
// Each leaf draws from a private copy of `core` that `jump(copy, draws)` has moved to the leaf's
// begin, so that neither the threads nor their order can show in the values. A thread keeps its
// copy: where leaves follow one another it stands at the next begin already, and where it stands
// before a leaf's begin the way is the shorter for it. The copy that reaches n becomes the new
// state of `core`, which is only read before that.
//
// The fill is isolated on both sides: no cancellation from outside can end it half done, and a
// waiting thread takes no outer task that might draw from the same core. An exception of a leaf
// reaches the caller with `core` unmoved; out[0, n) is then unspecified.
template <class Core, class Jump, class Finish>
void fillInParallel(Core& core, double* out, std::size_t n, Split split, Jump jump, Finish finish) {
  struct Worker {
    std::optional<Core> copy;
    std::size_t at = 0;
  };
  using Range = tbb::blocked_range<std::size_t>;
  bool const isLong = n > kUninterrupted;

  if (n <= split.grain || usableThreads() == 1) {
    Core copy = core;
    for (std::size_t at = 0; at < n; at += kAlonePart) {
      if (isLong) checkInterruption();
      const std::size_t length = std::min(kAlonePart, n - at);
      drawPart(copy, out + at, length, n);
      finish(out + at, length);
    }
    core = copy;
    return;
  }

  tbb::enumerable_thread_specific<Worker> workers;
  std::optional<Core> final;  // written by the one leaf that ends at n
  tbb::task_group_context context(tbb::task_group_context::isolated);
  const auto leaf = [&](Range const& range) {
    if (isLong) checkInterruption();
    const std::size_t length = range.size();
    double* const part = out + range.begin();
    Worker& worker = workers.local();
    if (!worker.copy || worker.at > range.begin()) {
      worker.copy.emplace(core);
      worker.at = 0;
    }
    if (worker.at < range.begin()) jump(*worker.copy, range.begin() - worker.at);
    drawPart(*worker.copy, part, length, n);
    worker.at = range.end();
    finish(part, length);
    if (range.end() == n) final = worker.copy;
  };
  {
    const Range all(0, n, split.grain);
    ForkJoin call(leaf);
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
  core = *final;
}

}  // namespace plugin_rng
