// What a parallel fill does when a leaf fails, and what it asks of a core.

#include "plugin_rng/parallel_fill.h"

#include <gtest/gtest.h>
#include <tbb/global_control.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "plugin_rng/substreams.h"

namespace {

using plugin_rng::fillInParallel;
using plugin_rng::kUniformSplit;
using namespace std::chrono_literals;

// Draws are the natural numbers; the draw `trap` springs.
struct Counting {
  std::size_t next = 0;
  std::size_t trap = ~std::size_t{0};
  bool cancels = false;

  void randu(double* out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i, ++next) {
      out[i] = static_cast<double>(next);
      if (next != trap) continue;
      if (!cancels) throw std::string("sprung");
      tbb::task::current_context()->cancel_group_execution();
    }
  }
};

constexpr std::size_t kCount = 1000003;
const auto jump = [](Counting& core, std::size_t n) { core.next += n; };
const auto nothing = [](double*, std::size_t) {};

class FillThreads : public testing::TestWithParam<std::size_t> {
 protected:
  tbb::global_control limit_{tbb::global_control::max_allowed_parallelism, GetParam()};
};

// A thread that is alone makes no leaves.
class FillWorkers : public FillThreads {};

TEST_P(FillThreads, EveryElementPassesThroughFinishOnce) {
  for (const bool adaptive : {false, true}) {
    Counting core{7};
    std::vector<double> out(kCount);
    fillInParallel(core, out.data(), kCount, {2048, adaptive}, jump,
                   [](double* part, std::size_t n) {
                     for (std::size_t i = 0; i < n; ++i) part[i] = -part[i];
                   });
    for (std::size_t i = 0; i < kCount; ++i) ASSERT_EQ(out[i], -static_cast<double>(i + 7));
    EXPECT_EQ(core.next, kCount + 7);
  }
}

TEST_P(FillWorkers, LeavesHoldAtMostTheGrain) {
  Counting core;
  std::vector<double> out(kCount);
  std::atomic<std::size_t> longest = 0;
  fillInParallel(core, out.data(), kCount, kUniformSplit, jump, [&](double*, std::size_t n) {
    for (std::size_t seen = longest; n > seen && !longest.compare_exchange_weak(seen, n);) {
    }
  });
  EXPECT_LE(longest, 8192u);
  EXPECT_GT(longest, 4096u);
}

TEST_P(FillThreads, ExceptionOfALeafReachesTheCallerAndLeavesTheCore) {
  for (const std::size_t trap : {std::size_t{0}, std::size_t{500000}, kCount - 1}) {
    Counting core{0, trap};
    std::vector<double> out(kCount);
    EXPECT_THROW(fillInParallel(core, out.data(), kCount, kUniformSplit, jump, nothing),
                 std::string);
    EXPECT_EQ(core.next, 0u);
  }
}

TEST_P(FillWorkers, CancelledFillIsAnErrorAndLeavesTheCore) {
  Counting core{0, 0, true};
  std::vector<double> out(kCount);
  EXPECT_THROW(fillInParallel(core, out.data(), kCount, kUniformSplit, jump, nothing),
               std::runtime_error);
  EXPECT_EQ(core.next, 0u);
}

TEST_P(FillThreads, CancellationAroundTheFillDoesNotReachIt) {
  std::vector<double> out(kCount);
  Counting core;
  tbb::task_group_context outer;
  tbb::parallel_for(
      0, 1,
      [&](int) {
        tbb::task::current_context()->cancel_group_execution();
        fillInParallel(core, out.data(), kCount, kUniformSplit, jump, nothing);
      },
      outer);
  EXPECT_EQ(core.next, kCount);
  for (std::size_t i = 0; i < kCount; ++i) ASSERT_EQ(out[i], static_cast<double>(i));
}

INSTANTIATE_TEST_SUITE_P(Threads, FillThreads, testing::Values(1, 2, 8));
INSTANTIATE_TEST_SUITE_P(Threads, FillWorkers, testing::Values(2, 8));

// A core that cannot jump, and does not draw before it was asked to.
class Stuck final : public tfl_rng::CoreStreamRNG {
 public:
  Stuck() : CoreStreamRNG(0, true) {}
  void reset(std::uint32_t) override {}
  void randu(double*, std::size_t) override {
    for (int i = 0; !asked && i < 30000; ++i) std::this_thread::sleep_for(1ms);
  }
  tfl_rng::errorID advance(std::size_t) override {
    asked = true;
    return tfl_rng::cannotComputeState;
  }
  tfl_rng::errorID setSubstream(std::size_t) override { return tfl_rng::cannotComputeState; }
  std::uint64_t getNumStreams() const override { return 1; }
  std::uint64_t getNumSubstreams() const override { return 1; }
  std::uint64_t getLog2StreamLen() const override { return 1; }
  std::uint64_t getLog2SubstreamLen() const override { return 1; }

  static inline std::atomic<bool> asked = false;
};

}  // namespace

template <>
inline constexpr tfl_rng::Generator const* tfl_rng::kGeneratorOf<Stuck> =
    tfl_rng::kGeneratorOf<tfl_rng::mrg32k3a>;
template <>
void plugin_rng::OutOfRangeError<Stuck>() {
  throw std::string("out of range");
}
template <>
void plugin_rng::cannotJump<Stuck>() {
  throw std::string("cannot jump");
}

namespace {

struct StuckPlugin final : plugin_rng::PluginRNGSubstreams<Stuck> {
  using PluginRNGSubstreams::PluginRNGSubstreams;
  void getStateComponents(void* const*) const override {}
  void setStateComponents(void const* const*) override {}
};

TEST_P(FillWorkers, CoreThatCannotJumpIsToldFromLeavesToo) {
  Stuck::asked = false;
  StuckPlugin plugin(boost::shared_ptr<Stuck>(new Stuck));
  std::vector<double> out(kCount);
  EXPECT_THROW(plugin.randu(out.data(), kCount), std::string);
  EXPECT_THROW(plugin.advance(1), std::string);
  EXPECT_THROW(plugin.setSubstream(0), std::string);
}

}  // namespace
