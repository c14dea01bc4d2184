// Virtual machines on several threads at once: what they draw, what they hand each other, and what
// the process makes on first use. Values are compared here; the thread sanitizer (tools/check.sh
// tsan) looks at the rest.

#include <gtest/gtest.h>
#include <tbb/global_control.h>

#include <barrier>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "embedded_host/allocator.h"
#include "tests/support/calls.h"

namespace {

using testing_support::numbers;

constexpr int kThreads = 3;

// Runs body(i) on threads that all start at once; the results in order.
template <class Body>
auto onThreads(Body body) {
  std::barrier start(kThreads);
  std::vector<std::future<decltype(body(0))>> running;
  for (int i = 0; i < kThreads; ++i) {
    running.push_back(std::async(std::launch::async, [&, i] {
      start.arrive_and_wait();
      return body(i);
    }));
  }
  std::vector<decltype(body(0))> results;
  for (auto& one : running) results.push_back(one.get());
  return results;
}

std::vector<double> evaluate(runtime::Vm& vm, std::string const& source) {
  return numbers(*vm.evaluate(source));
}

// Every distribution and vector kernel of every generator, the global stream of a new VM included.
std::vector<double> drawAllKinds() {
  runtime::Vm vm;
  vm.context().useSettingsFile("no-such-file.toml");
  return evaluate(vm, R"(
    all = [rand(1,3) randn(1,3)];
    names = RandStream.list;
    for i = 1:numel(names)
      s = RandStream(names(i),'Seed',7);
      all = [all rand(s,1,300) double(rand(s,1,300,'single')) randn(s,1,300) randi(s,9,1,300)];
      all = [all randperm(s,300) randperm(s,1000,10) randperm(s,100,50)];
      s.RandnAlg = 'Polar'; all = [all randn(s,1,300)];
      s.RandnAlg = 'Ziggurat'; all = [all randn(s,1,300)];
      s.RandnAlg = 'Inversion'; all = [all randn(s,1,300)];
      s.Antithetic = true; all = [all randn(s,1,30) rand(s,1,30) randi(s,9,1,30)];
    end
    rand('twister',5); all = [all rand(1,3)];
    randn('state',5); all = [all randn(1,3)];
    all)");
}

// First in this program: settings, texts, record types and the choice of kernels are all new.
TEST(Threads, FirstUseByAllAtOnceGivesEachWhatOneAloneGets) {
  const auto drawn = onThreads([](int) { return drawAllKinds(); });
  const std::vector<double> alone = drawAllKinds();
  ASSERT_GT(alone.size(), 20000u);
  for (auto const& numbersOfOne : drawn) EXPECT_TRUE(numbersOfOne == alone);
}

constexpr char kLargeFills[] = R"(
    all = [];
    names = {'mrg32k3a','mlfg6331_64','philox4x32_10','threefry4x64_20'};
    for i = 1:4
      s = RandStream(names{i},'Seed',3);
      x = rand(s,1,150001); y = randn(s,1,20001);
      all = [all x(1:7:end) y(1:7:end) rand(s,1,5)];
    end
    all)";

TEST(Threads, ParallelFillsOfSeveralVmsAtOnceGiveWhatOneThreadGets) {
  std::vector<double> alone;
  {
    tbb::global_control limit(tbb::global_control::max_allowed_parallelism, 1);
    runtime::Vm vm;
    alone = evaluate(vm, kLargeFills);
  }
  for (const std::size_t threads : {2, 3, 8}) {
    tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
    const auto drawn = onThreads([](int) {
      runtime::Vm vm;
      return evaluate(vm, kLargeFills);
    });
    for (auto const& numbersOfOne : drawn) EXPECT_TRUE(numbersOfOne == alone) << threads;
  }
}

// The last owner of a stream, of a large array and of its VM's objects may be any thread.
TEST(Threads, ObjectsAndArraysMayEndOnOtherThreadsThanTheirOwn) {
  auto const before = embedded_host::allocationCounts().liveBlocks;
  {
    struct Made {
      std::unique_ptr<runtime::Vm> vm;
      txArrayPtr stream, drawn;
    };
    std::vector<Made> made = onThreads([](int) {
      Made own{std::make_unique<runtime::Vm>(), nullptr, nullptr};
      own.stream = own.vm->evaluate("s = RandStream('mrg32k3a')");
      own.drawn = own.vm->evaluate("rand(s,1,600000)");  // a block that the allocator keeps
      return own;
    });
    onThreads([&](int i) {
      Made mine = std::move(made[static_cast<std::size_t>((i + 1) % kThreads)]);
      mine.drawn.reset();
      mine.vm->evaluate("x = rand(s,1,600000);");
      if (i != 0) mine.vm.reset();  // before the stream, or after it
      mine.stream.reset();
      return 0;
    });
  }
  EXPECT_EQ(embedded_host::allocationCounts().liveBlocks, before);
}

}  // namespace
