// Jumps: the cost of skipping values, per call.

#include "benchmarks/benchmarks.h"
#include "benchmarks/peers.h"

namespace benchmarks {

namespace {

// Lists a benchmark of one jump an iteration; `make` returns a callable () that jumps.
template <class Make>
void addJump(std::string const& work, std::string const& generator, std::string const& who,
             Make make) {
  const std::string name = work + '/' + generator + '/' + who + "/1";
  benchmark::RegisterBenchmark(name.c_str(), [make](benchmark::State& state) {
    auto jump = make();
    for (auto _ : state) {
      jump();
      benchmark::ClobberMemory();
    }
    state.counters["values"] = 1;
  });
}

constexpr unsigned long kSkipped = 1'000'000;

}  // namespace

void addJumps() {
  const std::string work = "jump over 10^6 doubles";

#define TFL_GENERATOR(name, ...) \
  addJump(work, #name, kOurs,    \
          [] { return [stream = makeStream(#name)] { stream->advance(kSkipped); }; });
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR

  // Two words a double.
  addJump(work, "mt19937ar", "std::mt19937",
          [] { return [engine = std::mt19937()]() mutable { engine.discard(2 * kSkipped); }; });
  addJump(work, "mt19937ar", "Boost", [] {
    return [engine = boost::random::mt19937()]() mutable { engine.discard(2 * kSkipped); };
  });
}

}  // namespace benchmarks
