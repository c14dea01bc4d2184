// Work items on threads: each has a substream of its own, so that the result does not depend on how
// many threads there are, nor on which of them does what.

#include <array>
#include <cstdio>
#include <numeric>
#include <thread>
#include <vector>

#include <tvmathrng/random.h>

namespace {

using namespace tvmathrng;

constexpr std::size_t kItems = 12;

// One work item: its numbers come from its own substream and depend on nothing else.
double work(Stream const& stream, std::size_t item) {
  Stream own = stream.at_substream(Substream{item});
  std::array<double, 1000> values;
  own.normal(values);
  return std::accumulate(values.begin(), values.end(), 0.0) / values.size();
}

// All work items on `workers` threads, each of which takes every workers-th item.
std::array<double, kItems> workOn(std::size_t workers) {
  Stream const stream("philox4x32_10", Seed{42});
  std::array<double, kItems> results;
  std::vector<std::jthread> threads;
  for (std::size_t worker = 0; worker < workers; ++worker) {
    threads.emplace_back([&results, &stream, worker, workers] {
      for (std::size_t item = worker; item < kItems; item += workers)
        results[item] = work(stream, item);
    });
  }
  threads.clear();  // waits for them
  return results;
}

}  // namespace

int main() {
  bool const same = workOn(1) == workOn(2) && workOn(1) == workOn(5);
  std::printf("1, 2 and 5 threads agree: %s\n", same ? "yes" : "no");
  return same ? 0 : 1;
}
