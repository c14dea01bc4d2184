// Random numbers in a C++ program: streams by themselves, and a virtual machine that runs text.

#include <array>
#include <cstdio>
#include <memory>
#include <numeric>
#include <thread>
#include <utility>
#include <vector>

#include "rng/mr_functions.h"
#include "runtime/vm.h"

namespace {

constexpr std::size_t kItems = 12;

// One work item: its numbers come from its own substream and depend on nothing else.
double work(std::size_t item) {
  auto const stream =
      std::unique_ptr<randstream>(mrCreateRNGStream("philox4x32_10", 1, 0, 42, nullptr, 0));
  stream->setSubstream(item);
  std::array<double, 1000> u;
  stream->randuFcn(u.data(), u.size());
  return std::accumulate(u.begin(), u.end(), 0.0) / u.size();
}

// All work items on `workers` threads, each of which takes every workers-th item.
std::array<double, kItems> workOn(std::size_t workers) {
  std::array<double, kItems> results;
  std::vector<std::jthread> threads;
  for (std::size_t worker = 0; worker < workers; ++worker) {
    threads.emplace_back([&results, worker, workers] {
      for (std::size_t item = worker; item < kItems; item += workers) results[item] = work(item);
    });
  }
  threads.clear();  // waits for them
  return results;
}

}  // namespace

int main() {
  bool const same = workOn(1) == workOn(2) && workOn(1) == workOn(5);
  std::printf("1, 2 and 5 threads agree: %s\n", same ? "yes" : "no");

  runtime::Vm vm;
  txArrayPtr const x = vm.evaluate("s = RandStream('mrg32k3a','Seed',7); rand(s,1,3)");
  double const* const values = std::as_const(*x).dataAs<double>();
  std::printf("the text drew: %.6f %.6f %.6f\n", values[0], values[1], values[2]);
  return same ? 0 : 1;
}
