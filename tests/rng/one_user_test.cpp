// Two threads in one stream.

#include "rng/one_user.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "rng/randstream.h"
#include "tests/support/scripted_plugin.h"

namespace {

using testing_support::Script;
using testing_support::ScriptedPlugin;

TEST(OneUser, StaysOfOneThreadNestAndASecondThreadIsNotAlone) {
  OneUser object;
  const auto isAloneElsewhere = [&] {
    return std::async(std::launch::async,
                      [&] {
                        EXPECT_EQ(OneUser::Stay(object).isAlone(), object.mayRead());
                        return object.mayRead();
                      })
        .get();
  };
  {
    const OneUser::Stay outer(object);
    EXPECT_TRUE(OneUser::Stay(object).isAlone());
    EXPECT_TRUE(object.mayRead());
    EXPECT_FALSE(isAloneElsewhere());
    EXPECT_FALSE(isAloneElsewhere()) << "the end of a nested or of a refused stay ends no other";
  }
  EXPECT_TRUE(isAloneElsewhere());
}

#ifndef NDEBUG

// Draws until it is released.
class Waiting final : public ScriptedPlugin {
 public:
  using ScriptedPlugin::ScriptedPlugin;
  void randu(double*, std::size_t) override {
    started.set_value();
    released.get_future().wait();
  }
  std::promise<void> started, released;
};

using InUseDeathTest = testing::TestWithParam<void (*)(randstream&)>;

TEST_P(InUseDeathTest, SecondThreadInAStreamEndsTheProgramWithAReason) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto program = [] {
    Script script;
    auto* const plugin = new Waiting(script);
    randstream stream("scripted", 7, plugin, 1, 0);
    double drawn;
    std::thread first([&] { stream.randuFcn(&drawn, 1); });
    plugin->started.get_future().wait();
    GetParam()(stream);
    plugin->released.set_value();
    first.join();
  };
  EXPECT_DEATH(program(), "scripted stream \\(seed 7\\) is used by two threads at once");
}

INSTANTIATE_TEST_SUITE_P(
    Operations, InUseDeathTest,
    testing::Values([](randstream& stream) { stream.reset(1); },
                    [](randstream& stream) { stream.getStateBufLen(); },
                    [](randstream& stream) { stream.randnFcn<double>(nullptr, 0, false); },
                    [](randstream& stream) { stream.randkpermFcn<double>(nullptr, 0, 1); }));

#endif

}  // namespace
