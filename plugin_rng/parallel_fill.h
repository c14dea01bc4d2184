#pragma once

// Large fills on all cores of the machine, with exactly the numbers of a serial fill.

#include <algorithm>
#include <cstddef>
#include <optional>

#include "plugin_rng/large_results.h"
#include "plugin_rng/parallel.h"

namespace plugin_rng {

inline constexpr Split kUniformSplit{8192, false};

// A thread that fills alone draws parts of this length: long enough that starting one costs
// nothing, and still in the cache when they are finished.
inline constexpr std::size_t kAlonePart = 32768;

// Fills out[0, n) as core.randu(out, n) and one `finish(part, length)` over every part of it would,
// and leaves `core` where that fill would have left it.
//
// Each leaf draws from a private copy of `core` that `jump(copy, draws)` has moved to the leaf's
// begin, so that neither the threads nor their order can show in the values. A thread keeps its
// copy: where leaves follow one another it stands at the next begin already, and where it stands
// before a leaf's begin the way is the shorter for it. The copy that reaches n becomes the new
// state of `core`, which is only read before that.
//
// An exception of a leaf reaches the caller with `core` unmoved; out[0, n) is then unspecified.
template <class Core, class Jump, class Finish>
void fillInParallel(Core& core, double* out, std::size_t n, Split split, Jump jump, Finish finish) {
  struct Worker {
    std::optional<Core> copy;
    std::size_t at = 0;
  };
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

  std::optional<Core> final;  // written by the one leaf that ends at n
  forEachLeaf<Worker>(n, split, [&](Worker& worker, std::size_t begin, std::size_t end) {
    if (isLong) checkInterruption();
    if (!worker.copy || worker.at > begin) {
      worker.copy.emplace(core);
      worker.at = 0;
    }
    if (worker.at < begin) jump(*worker.copy, begin - worker.at);
    drawPart(*worker.copy, out + begin, end - begin, n);
    worker.at = end;
    finish(out + begin, end - begin);
    if (end == n) final = worker.copy;
  });
  core = *final;
}

}  // namespace plugin_rng
