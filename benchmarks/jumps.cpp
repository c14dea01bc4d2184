// Jumps: the cost of skipping values, of moving to a substream and of copying a core, per call.

#include <Random123/conventional/Engine.hpp>

#include "benchmarks/benchmarks.h"
#include "benchmarks/peers.h"

// Random123 has macros of these names.
#undef philox4x32
#undef threefry4x64
#include "tfl_rng/mlfg6331_64.h"
#include "tfl_rng/mrg32k3a.h"
#include "tfl_rng/philox4x32.h"
#include "tfl_rng/threefry4x64.h"

namespace benchmarks {

namespace {

// Lists a benchmark of one jump or copy an iteration; `make` returns a callable () that makes it.
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

constexpr std::uint64_t kSkipped = 1'000'000;

// What a core of a generator with substreams does for parallel work.
template <class Core>
void addMoves(char const* name, Core const& fresh) {
  addJump("jump over 2^60 doubles", name, kOurs, [name] {
    return [stream = makeStream(name)] { stream->advance(std::uint64_t{1} << 60); };
  });
  addJump("move to substream 12345", name, kOurs,
          [name] { return [stream = makeStream(name)] { stream->setSubstream(12344); }; });
  addJump("a stream at substream 12345", name, kOurs,
          [name] { return [stream = makeStream(name)] { stream->atSubstream(12344); }; });
  addJump("copy of a core", name, kOurs, [fresh] {
    return [core = fresh] {
      Core copy(core);
      benchmark::DoNotOptimize(&copy);
    };
  });
}

void addGslCopy(char const* generator, char const* who, gsl_rng_type const* type) {
  addJump("copy of a core", generator, who, [type] {
    return [rng = std::shared_ptr<gsl_rng>(gsl_rng_alloc(type), gsl_rng_free)] {
      gsl_rng_free(gsl_rng_clone(rng.get()));
    };
  });
}

template <class Engine>
void addCopy(char const* generator, char const* who) {
  addJump("copy of a core", generator, who, [] {
    return [engine = Engine()] {
      Engine copy(engine);
      benchmark::DoNotOptimize(&copy);
    };
  });
}

}  // namespace

void addJumps() {
  const std::string work = "jump over 10^6 doubles";

  for (char const* const name : tfl_rng::generatorNames()) {
    addJump(work, name, kOurs,
            [name] { return [stream = makeStream(name)] { stream->advance(kSkipped); }; });
    addJump("a new stream", name, kOurs, [name] { return [name] { makeStream(name); }; });
    addJump("a clone of a stream", name, kOurs,
            [name] { return [stream = makeStream(name)] { stream->clone(); }; });
  }

  // Two words a double.
  addJump(work, "mt19937ar", "std::mt19937",
          [] { return [engine = std::mt19937()]() mutable { engine.discard(2 * kSkipped); }; });
  addJump(work, "mt19937ar", "Boost", [] {
    return [engine = boost::random::mt19937()]() mutable { engine.discard(2 * kSkipped); };
  });

  addMoves("mrg32k3a", tfl_rng::mrg32k3a(0, 0, true));
  addMoves("mlfg6331_64", tfl_rng::mlfg6331_64(0, 0, true));
  addMoves("philox4x32_10", tfl_rng::philox4x32(0, 0, true));
  addMoves("threefry4x64_20", tfl_rng::threefry4x64(0, 0, true));
  addGslCopy("mrg32k3a", "GSL cmrg, clone", gsl_rng_cmrg);
  addCopy<r123::Engine<r123::Philox4x32>>("philox4x32_10", "Random123 engine");
  addCopy<r123::Engine<r123::Threefry4x64>>("threefry4x64_20", "Random123 engine");
  addCopy<std::mt19937>(kAny, "std::mt19937");
}

}  // namespace benchmarks
