#include <gmock/gmock.h>

#include "embedded_host/allocator.h"
#include "errors/keys.h"
#include "rng/randstream.h"
#include "tests/support/identifiers.h"
#include "tests/support/scripted_plugin.h"

namespace {

using ::testing::ElementsAre;
using testing_support::argumentsOf;
using testing_support::identifierOf;
using testing_support::Script;
using testing_support::ScriptedNormalPlugin;
using testing_support::ScriptedPlugin;
using testing_support::ScriptedStreamsPlugin;

TEST(Stream, KeepsTheGeneratorNameAsWrittenUpToItsRoom) {
  Script script;
  randstream stream("PHILOX4x32-10-and-a-very-long-tail", 5, new ScriptedPlugin(script), 3, 2);
  EXPECT_STREQ(stream.generatorType(), "PHILOX4x32-10-and-a-very-long-t");
  EXPECT_EQ(stream.seed(), 5U);
  EXPECT_EQ(stream.numStreams(), 3U);
  EXPECT_EQ(stream.streamIndex(), 2U);
  EXPECT_TRUE(stream.fullPrecision());
  EXPECT_FALSE(stream.antithetic());
  EXPECT_TRUE(script.calls.empty()) << "a plug-in arrives seeded";
}

TEST(Stream, WithoutPluginAnswersItsSettingsAndRefusesControl) {
  randstream stream("none", 1, nullptr, 1, 0);
  EXPECT_STREQ(stream.getRandnAlg(), "Ziggurat");
  EXPECT_EQ(stream.getSubstream(), 0U);
  EXPECT_EQ(identifierOf([&] { stream.reset(1); }), "TALVOR:RandStream:UnexpectedPluginError");
}

TEST(Stream, DestroysItsPluginOnce) {
  Script script;
  { randstream stream("scripted", 0, new ScriptedStreamsPlugin(script), 1, 0); }
  EXPECT_EQ(script.destroyed, 1);
}

TEST(Stream, WithoutSubstreamsAdvancesByDrawingInChunks) {
  Script script;
  script.uniforms.assign(250, 0.5);
  randstream stream("scripted", 0, new ScriptedPlugin(script), 1, 0);
  stream.setAntithetic(true);
  stream.advance(250);
  stream.advance(0);
  EXPECT_THAT(script.requests, ElementsAre(100, 100, 50));
  stream.setSubstream(0);
  EXPECT_EQ(stream.getSubstream(), 0U);
  const auto setOne = [&] { stream.setSubstream(1); };
  EXPECT_EQ(identifierOf(setOne), "TALVOR:RandStream:set:SubstreamsNotSupported");
  EXPECT_EQ(argumentsOf(setOne), "scripted");
  randstream::streamParamsStruct parameters{};
  EXPECT_EQ(identifierOf([&] { stream.getStreamParameters(&parameters); }),
            "TALVOR:RandStream:UnexpectedPluginError");
}

TEST(Stream, ForwardsToSubstreamsAndJumps) {
  Script script;
  randstream stream("scripted", 0, new ScriptedStreamsPlugin(script), 1, 0);
  stream.setSubstream(7);
  stream.advance(1UL << 63);
  stream.reset(9);
  stream.setFullPrecision(false);
  EXPECT_THAT(script.calls,
              ElementsAre("substream 7", "advance 9223372036854775808", "reset 9", "precision 0"));
  EXPECT_TRUE(script.requests.empty());
  EXPECT_EQ(stream.getSubstream(), 7U);
  EXPECT_EQ(stream.seed(), 9U);
  EXPECT_FALSE(stream.fullPrecision());
  randstream::streamParamsStruct p{};
  stream.getStreamParameters(&p);
  EXPECT_THAT((std::vector{p.numStreams, p.numSubstreams, p.log2StreamLen, p.log2SubstreamLen}),
              ElementsAre(11, 33, 22, 44));
}

class OwnError : public plugin_rng::PluginRNGError {
 public:
  char const* identifier() const noexcept override { return "my:plugin:broken"; }
  char const* message() const noexcept override { return "no entropy left"; }
};

// Every control operation of the plug-in throws what `raise` throws.
class FailingPlugin : public ScriptedStreamsPlugin {
 public:
  FailingPlugin(Script& script, void (*raise)()) : ScriptedStreamsPlugin(script), raise_(raise) {}
  void reset(std::uint32_t) override { raise_(); }
  void setFullPrecision(bool) override { raise_(); }
  void setSubstream(std::size_t) override { raise_(); }
  void advance(std::size_t) override { raise_(); }
  std::uint64_t getSubstream() const override { return raise_(), 0; }
  std::uint64_t getNumStateComponents() const override { return raise_(), 0; }
  std::pair<std::uint64_t, std::uint64_t> getStreamLimits() const override {
    return raise_(), std::pair<std::uint64_t, std::uint64_t>();
  }

 private:
  void (*raise_)();
};

struct Failure {
  char const* name;
  void (*raise)();
  char const* identifier;
  char const* arguments;
};

class Guard : public ::testing::TestWithParam<Failure> {};

TEST_P(Guard, MapsPluginFailuresOfEveryControlOperation) {
  Script script;
  randstream stream("scripted", 3, new FailingPlugin(script, GetParam().raise), 1, 0);
  randstream::streamParamsStruct parameters{};
  const std::vector<std::function<void()>> operations = {
      [&] { stream.reset(8); },
      [&] { stream.setFullPrecision(false); },
      [&] { stream.setSubstream(1); },
      [&] { stream.advance(1); },
      [&] { stream.getSubstream(); },
      [&] { stream.getNumStateComponents(); },
      [&] { stream.getStreamParameters(&parameters); },
  };
  for (auto const& operation : operations) {
    EXPECT_EQ(identifierOf(operation), GetParam().identifier);
    EXPECT_EQ(argumentsOf(operation), GetParam().arguments);
  }
  EXPECT_TRUE(stream.fullPrecision()) << "a failed switch changes nothing";
  EXPECT_EQ(stream.seed(), 8U) << "the new seed is stored before the plug-in is asked";
}

INSTANTIATE_TEST_SUITE_P(
    All, Guard,
    ::testing::Values(
        Failure{"library", [] { errors::raise(TALVOR::RandStream::create::UnknownRNGType("x")); },
                "TALVOR:RandStream:create:UnknownRNGType", "x"},
        Failure{"plugin", [] { throw OwnError(); }, "TALVOR:RandStream:PluginError",
                "my:plugin:broken|no entropy left"},
        Failure{"host", [] { matrix::detail::error_maxlhs(); },
                "TALVOR:RandStream:UnexpectedPluginError", ""},
        Failure{"standard", [] { throw std::bad_alloc(); },
                "TALVOR:RandStream:UnexpectedPluginError", ""},
        Failure{"foreign", [] { throw 42; }, "TALVOR:RandStream:UnexpectedPluginError", ""}),
    [](auto const& row) { return row.param.name; });

TEST(Stream, RefusedDefaultMethodIsAConstructionErrorThatKeepsThePluginAlive) {
  struct Refusing : ScriptedNormalPlugin {
    using ScriptedNormalPlugin::ScriptedNormalPlugin;
    char const* getDefaultRandnAlg() const override { return "none such"; }
  };
  Script script;
  auto* plugin = new Refusing(script);
  const auto make = [&] { randstream stream("scripted", 0, plugin, 1, 0); };
  EXPECT_EQ(identifierOf(make), "TALVOR:RandStream:set:CantInitRandnAlg");
  EXPECT_EQ(argumentsOf(make), "none such|scripted");
  EXPECT_EQ(script.destroyed, 0);
  plugin->destroy();
}

TEST(Stream, SamplingLetsPluginErrorsOfMidFillThroughAndKeepsNoMemory) {
  Script script;
  script.uniforms.assign(150, 0.3);
  randstream stream("scripted", 0, new ScriptedPlugin(script), 1, 0);
  std::vector<double> out(1000);
  const std::vector<std::function<void()>> operations = {
      [&] { stream.randuFcn(out.data(), 1000); },
      [&] { stream.randuFcn(reinterpret_cast<float*>(out.data()), 1000); },
      [&] { stream.randiFcn(1, 6, out.data(), 1000); },
      [&] { stream.randnFcn(out.data(), 1000, false); },
      [&] { stream.randpermFcn(out.data(), 1000); },
      [&] { stream.randkpermFcn(out.data(), 10, 1e6); },
      [&] { stream.randkpermFcn(out.data(), 500, 1000); },
  };
  for (auto const& operation : operations) {
    script.used = 145;
    auto const blocks = embedded_host::allocationCounts().liveBlocks;
    EXPECT_THROW(operation(), std::out_of_range);
    EXPECT_EQ(embedded_host::allocationCounts().liveBlocks, blocks);
  }
}

}  // namespace
