// Copies of a stream, and the way back to one.

#include <gmock/gmock.h>

#include "rng/mr_functions.h"
#include "rng/snapshot.h"
#include "tests/support/identifiers.h"
#include "tests/support/scripted_plugin.h"

namespace {

using namespace testing_support;
using Stream = std::unique_ptr<randstream>;

Stream make(char const* type) { return Stream(mrCreateRNGStream(type, 1, 0, 7, nullptr, 0)); }

std::vector<double> normals(randstream& stream, std::size_t n) {
  std::vector<double> values(n);
  stream.randnFcn(values.data(), n, false);
  return values;
}

class Clone : public testing::TestWithParam<char const*> {};

TEST_P(Clone, IsTheStreamOverAgainAndAStreamOfItsOwn) {
  Stream stream = make(GetParam());
  stream->reset(4294967295U);
  stream->setRandnAlg("pOLAR");
  stream->setAntithetic(true);
  stream->setFullPrecision(false);
  if (stream->hasSubstreams()) stream->setSubstream(9);
  normals(*stream, 7);  // an odd count leaves a Polar value pending
  std::string const before = takeSnapshot(*stream);

  Stream const copy = stream->clone();
  EXPECT_EQ(takeSnapshot(*copy), before);
  EXPECT_STREQ(copy->generatorType(), GetParam());
  EXPECT_STREQ(copy->getRandnAlg(), "POLAR");
  normals(*copy, 20);
  copy->reset(3);
  EXPECT_EQ(takeSnapshot(*stream), before);
  Stream const another = stream->clone();
  auto const next = normals(*stream, 20);
  stream.reset();
  EXPECT_EQ(normals(*another, 20), next);
}

constexpr char const* kNames[] = {
#define TFL_GENERATOR(name, ...) #name,
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
    "PHILOX4x32-10"};
INSTANTIATE_TEST_SUITE_P(Generators, Clone, testing::ValuesIn(kNames));

// Has the state of a generator of the library, but not its way to copy itself.
class ForeignPhilox : public ScriptedStreamsPlugin {
 public:
  static constexpr std::uint32_t kState[7] = {1, 2, 3, 4, 5, 6, 0};
  using ScriptedStreamsPlugin::ScriptedStreamsPlugin;
  std::size_t getNumStateComponents() const override { return 1; }
  void getStateComponentTypes(std::size_t, txClassID* classes, std::size_t* n) const override {
    classes[0] = static_cast<txClassID>(uint32State);
    n[0] = std::size(kState);
  }
  void getStateComponents(void* const* buffers) const override {
    std::copy(std::begin(kState), std::end(kState), static_cast<std::uint32_t*>(buffers[0]));
  }
};

TEST(CloneOfAForeignPlugin, IsMadeByTheFactoryThatKnowsItsName) {
  Script script;
  script.uniforms = {0.3, 0.4};
  randstream stream("PHILOX4x32-10", 7, new ForeignPhilox(script), 1, 0);
  stream.setRandnAlg("Polar");
  stream.setSubstream(5);
  normals(stream, 1);
  script.calls.clear();
  Stream const copy = stream.clone();
  EXPECT_THAT(script.calls, testing::IsEmpty());
  EXPECT_EQ(copy->getSubstream(), 5U);
  EXPECT_EQ(normals(*copy, 1), normals(stream, 1));
  Stream const same = make("philox4x32_10");
  same->setStateBuf(ForeignPhilox::kState, sizeof ForeignPhilox::kState);
  same->setRandnAlg("Polar");
  EXPECT_EQ(normals(*copy, 4), normals(*same, 4));
}

TEST(CloneOfAForeignPlugin, IsRefusedWhereNoFactoryKnowsIt) {
  Script script;
  randstream const stream("scripted", 7, new ScriptedPlugin(script), 1, 0);
  EXPECT_EQ(identifierOf([&] { stream.clone(); }), "TALVOR:RandStream:create:UnknownRNGType");
  EXPECT_EQ(argumentsOf([&] { stream.clone(); }), "scripted");
}

TEST(Rewind, TakesBackTheDraws) {
  Stream const stream = make("mt19937ar");
  normals(*stream, 5);
  Stream earlier = stream->clone();
  std::string const before = takeSnapshot(*stream);
  stream->setRandnAlg("Polar");
  normals(*stream, 5);
  stream->rewind(std::move(earlier));
  EXPECT_EQ(takeSnapshot(*stream), before);
}

}  // namespace
