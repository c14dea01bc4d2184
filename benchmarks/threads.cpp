// Large fills on two threads beside the same fills on one, in real time. compare.py gives them two
// cores and everything else one, so they have an option of their own: --threads.

#include <tbb/global_control.h>

#include "benchmarks/benchmarks.h"

namespace benchmarks {

namespace {

void addFill(char const* generator, char const* who, std::size_t threads) {
  for (const std::size_t n : {131'073, 1'000'000, 10'000'000}) {
    const std::string name = std::string("uniform double on two threads/") + generator + '/' + who +
                             '/' + std::to_string(n);
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
      tbb::global_control const limit(tbb::global_control::max_allowed_parallelism, threads);
      auto const stream = makeStream(generator);
      auto* const out = static_cast<double*>(sharedBuffer());
      for (auto _ : state) {
        stream->randuFcn(out, n);
        benchmark::ClobberMemory();
      }
      state.counters["values"] = static_cast<double>(n);
    })->UseRealTime();
  }
}

}  // namespace

void addThreads() {
  for (char const* generator : {"mlfg6331_64", "mrg32k3a", "philox4x32_10", "threefry4x64_20"}) {
    addFill(generator, kOurs, 2);
    addFill(generator, "one thread", 1);
  }
}

}  // namespace benchmarks
