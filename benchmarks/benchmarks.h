#pragma once

// How a benchmark is listed, and the memory that all of them fill.
//
// A name is work/generator/who/n: "uniform double/mt19937ar/Boost.Random/10000". compare.py sets
// everyone with the same work, generator and n side by side; a peer whose generator is kAny stands
// beside every generator. `values` says how many values one iteration makes.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

#include "rng/mr_functions.h"
#include "rng/randstream.h"
#include "tfl_rng/generator_catalogue.h"

namespace benchmarks {

inline constexpr char kOurs[] = "tvmathrng";
inline constexpr char kAny[] = "any";
inline constexpr std::size_t kLargest = 10'000'000;
inline constexpr std::initializer_list<std::size_t> kSizes = {100, 10'000, 1'000'000, kLargest};

// Room for kLargest values of 8 bytes, aligned to a page and touched; the same for everyone.
void* sharedBuffer();

// Lists one benchmark a size. `make` returns, when the benchmark runs, a callable (T* out, n) with
// a generator of its own.
template <class T, class Make>
void add(std::string const& work, std::string const& generator, std::string const& who,
         std::initializer_list<std::size_t> sizes, Make make) {
  for (const std::size_t n : sizes) {
    const std::string name = work + '/' + generator + '/' + who + '/' + std::to_string(n);
    benchmark::RegisterBenchmark(name.c_str(), [make, n](benchmark::State& state) {
      auto fill = make();
      T* const out = static_cast<T*>(sharedBuffer());
      for (auto _ : state) {
        fill(out, n);
        benchmark::ClobberMemory();
      }
      state.counters["values"] = static_cast<double>(n);
    });
  }
}

// Lists a benchmark of one value a call. `make` returns a callable () with a generator of its own.
template <class Make>
void addOneValue(std::string const& work, std::string const& generator, std::string const& who,
                 Make make) {
  const std::string name = work + '/' + generator + '/' + who + "/1";
  benchmark::RegisterBenchmark(name.c_str(), [make](benchmark::State& state) {
    constexpr int kCalls = 1000;
    auto draw = make();
    for (auto _ : state)
      for (int i = 0; i < kCalls; ++i) benchmark::DoNotOptimize(draw());
    state.counters["values"] = kCalls;
  });
}

// A stream of the registered generator `name`, seed 0.
inline std::unique_ptr<randstream> makeStream(char const* name) {
  return std::unique_ptr<randstream>(mrCreateRNGStream(name, 1, 0, 0, nullptr, 0));
}

// The lists, one a file.
void addMemory();
void addUniform();
void addNormal();
void addOneValue();
void addIntegers();
void addPermutations();
void addJumps();
void addCalls();
void addThreads();

}  // namespace benchmarks
