#include <gmock/gmock.h>

#include <cstring>

#include "rng/randstream.h"
#include "rng/snapshot.h"
#include "tests/support/identifiers.h"
#include "tests/support/scripted_plugin.h"

namespace {

using testing_support::argumentsOf;
using testing_support::identifierOf;
using testing_support::Script;
using testing_support::ScriptedPlugin;

// Components of different classes whose sizes leave the following ones unaligned in the flat form.
struct State {
  std::uint8_t bytes[3];
  double doubles[2];
  std::uint16_t shorts[1];
  std::uint64_t longs[2];
};

class StatefulPlugin : public ScriptedPlugin {
 public:
  StatefulPlugin(Script& script, State& state) : ScriptedPlugin(script), state_(state) {}

  std::uint64_t getNumStateComponents() const override { return 4; }
  void getStateComponentTypes(std::uint64_t n, txClassID* classes,
                              std::uint64_t* lengths) const override {
    const int ids[] = {uint8State, doubleState, uint16State, uint64State};
    const std::size_t counts[] = {3, 2, 1, 2};
    for (std::size_t i = 0; i < n; ++i) {
      classes[i] = static_cast<txClassID>(ids[i]);
      lengths[i] = counts[i];
    }
  }
  void getStateComponents(void* const* buffers) const override {
    std::memcpy(buffers[0], state_.bytes, sizeof state_.bytes);
    std::copy_n(state_.doubles, 2, static_cast<double*>(buffers[1]));
    std::copy_n(state_.shorts, 1, static_cast<std::uint16_t*>(buffers[2]));
    std::copy_n(state_.longs, 2, static_cast<std::uint64_t*>(buffers[3]));
  }
  void setStateComponents(void const* const* buffers) override {
    note("setState", 0);
    if (static_cast<std::uint8_t const*>(buffers[0])[0] == 99) throw std::runtime_error("refused");
    std::memcpy(state_.bytes, buffers[0], sizeof state_.bytes);
    std::copy_n(static_cast<double const*>(buffers[1]), 2, state_.doubles);
    std::copy_n(static_cast<std::uint16_t const*>(buffers[2]), 1, state_.shorts);
    std::copy_n(static_cast<std::uint64_t const*>(buffers[3]), 2, state_.longs);
  }

 private:
  State& state_;
};

class StreamState : public ::testing::Test {
 protected:
  static constexpr std::uint64_t kBytes = 3 + 16 + 2 + 16;

  State state{{1, 2, 3}, {0.5, -0.25}, {777}, {1ULL << 63, 42}};
  Script script;
  randstream stream{"stateful", 0, new StatefulPlugin(script, state), 1, 0};
};

TEST_F(StreamState, FlatFormIsTheComponentsBytesBackToBack) {
  ASSERT_EQ(stream.getStateBufLen(), kBytes);
  unsigned char flat[kBytes];
  stream.getStateBuf(flat, kBytes);
  double second = 0;
  std::uint64_t last = 0;
  std::memcpy(&second, flat + 11, 8);
  std::memcpy(&last, flat + 29, 8);
  EXPECT_EQ(flat[2], 3);
  EXPECT_EQ(second, -0.25);
  EXPECT_EQ(last, 42U);

  const State saved = state;
  state = {};
  stream.setStateBuf(flat, kBytes);
  EXPECT_EQ(state.doubles[0], saved.doubles[0]);
  EXPECT_EQ(state.shorts[0], saved.shorts[0]);
  EXPECT_EQ(state.longs[0], saved.longs[0]);
}

TEST_F(StreamState, SnapshotHoldsEachElementInItsBytes) {
  EXPECT_THAT(takeSnapshot(stream),
              ::testing::HasSubstr("components 4\n"
                                   "component uint8 3\n01 02 03\n"
                                   "component double 2\n3fe0000000000000 bfd0000000000000\n"
                                   "component uint16 1\n0309\n"
                                   "component uint64 2\n8000000000000000 000000000000002a\n"));
}

TEST_F(StreamState, ClassesAreReportedAsHostClasses) {
  txClassID classes[4];
  std::uint64_t lengths[4];
  stream.getStateComponentTypes(4, classes, lengths);
  EXPECT_THAT(classes,
              ::testing::ElementsAre(txClassUint8, txClassDouble, txClassUint16, txClassUint64));
  EXPECT_THAT(lengths, ::testing::ElementsAre(3, 2, 1, 2));
}

TEST_F(StreamState, WrongLengthsAndCountsNeverReachThePlugin) {
  unsigned char flat[kBytes + 1] = {};
  for (const std::uint64_t length : {0UL, kBytes - 1, kBytes + 1}) {
    EXPECT_EQ(identifierOf([&] { stream.getStateBuf(flat, length); }),
              "TALVOR:RandStream:get:InvalidStateBufLen");
    EXPECT_EQ(identifierOf([&] { stream.setStateBuf(flat, length); }),
              "TALVOR:RandStream:set:InvalidStateBufLen");
  }
  for (const std::uint64_t count : {0UL, 3UL, 5UL}) {
    const auto types = [&] { stream.getStateComponentTypes(count, nullptr, nullptr); };
    const auto get = [&] { stream.getStateComponents(count, nullptr); };
    const auto put = [&] { stream.setStateComponents(count, nullptr); };
    EXPECT_EQ(identifierOf(types), "TALVOR:RandStream:get:InvalidNumStateComponents");
    EXPECT_EQ(identifierOf(get), "TALVOR:RandStream:get:InvalidNumStateComponents");
    EXPECT_EQ(identifierOf(put), "TALVOR:RandStream:set:InvalidNumStateComponents");
    EXPECT_EQ(argumentsOf(put), "stateful");
  }
  EXPECT_TRUE(script.calls.empty());
}

TEST_F(StreamState, RefusedStateIsReportedAndNothingLeaks) {
  unsigned char flat[kBytes] = {99};
  EXPECT_EQ(identifierOf([&] { stream.setStateBuf(flat, kBytes); }),
            "TALVOR:RandStream:UnexpectedPluginError");
  EXPECT_EQ(state.bytes[0], 1);
}

TEST_F(StreamState, NoComponentsMeansAnEmptyBuffer) {
  randstream empty("scripted", 0, new ScriptedPlugin(script), 1, 0);
  EXPECT_EQ(empty.getStateBufLen(), 0U);
  empty.setStateBuf(nullptr, 0);
  empty.getStateBuf(nullptr, 0);
  EXPECT_TRUE(script.calls.empty());
}

// A state that has no bytes, in components without elements, of a class that no state has, or none
// at all, is still the plug-in's to read and to refuse.
TEST_F(StreamState, EmptyOnesReachThePlugin) {
  struct Bare : ScriptedPlugin {
    Bare(Script& script, std::size_t count) : ScriptedPlugin(script), count_(count) {}
    std::uint64_t getNumStateComponents() const override { return count_; }
    void getStateComponentTypes(std::uint64_t, txClassID* classes,
                                std::uint64_t* lengths) const override {
      std::fill_n(classes, count_, static_cast<txClassID>(uint32State));
      std::fill_n(lengths, count_, 0);
      if (count_ == 0) return;
      classes[0] = static_cast<txClassID>(uint64State + 1);  // none that has elements
      lengths[0] = 5;
    }
    void getStateComponents(void* const*) const override { script_.calls.push_back("get"); }
    std::size_t count_;
  };
  randstream none("scripted", 0, new Bare(script, 0), 1, 0);
  none.setStateComponents(0, nullptr);
  none.getStateComponents(0, nullptr);
  randstream empty("scripted", 0, new Bare(script, 2), 1, 0);
  EXPECT_EQ(empty.getStateBufLen(), 0U);
  empty.setStateBuf(nullptr, 0);
  empty.getStateBuf(nullptr, 0);
  EXPECT_THAT(script.calls, ::testing::ElementsAre("setState 0", "get", "setState 0", "get"));
  EXPECT_THAT(takeSnapshot(empty), ::testing::HasSubstr("component  0\ncomponent uint32 0\n"));
}

TEST_F(StreamState, RestoringKeepsAPendingPolarValue) {
  script.uniforms = {0.3, 0.6};
  stream.setRandnAlg("polar");
  double z = 0;
  stream.randnFcn(&z, 1, false);
  unsigned char flat[kBytes];
  stream.getStateBuf(flat, kBytes);
  stream.setStateBuf(flat, kBytes);
  stream.randnFcn(&z, 1, false);  // would run out of uniforms if it drew
  EXPECT_NE(z, 0);
}

}  // namespace
