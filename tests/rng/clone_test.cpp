// Copies of a stream, the way back to one, and the count of what a stream drew.

#include <gmock/gmock.h>

#include <functional>
#include <numeric>

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
  EXPECT_EQ(copy->drawCounts().drawn(), stream->drawCounts().drawn());
  normals(*copy, 20);
  copy->reset(3);
  EXPECT_EQ(takeSnapshot(*stream), before);
  Stream const another = stream->clone();
  auto const next = normals(*stream, 20);
  stream.reset();
  EXPECT_EQ(normals(*another, 20), next);
}

TEST_P(Clone, AdvancesToWhereDrawingLeads) {
  Stream const drawn = make(GetParam());
  Stream const jumped = drawn->clone();
  std::vector<double> uniforms(300'007);
  drawn->randuFcn(uniforms.data(), uniforms.size());
  jumped->advance(uniforms.size());
  EXPECT_EQ(takeSnapshot(*jumped), takeSnapshot(*drawn));
  EXPECT_EQ(jumped->drawCounts().passedOver, uniforms.size());
  jumped->advance(~0UL - 5);
  drawn->advance(1UL << 63);
  drawn->advance(~0UL - 5 - (1UL << 63));
  EXPECT_EQ(takeSnapshot(*jumped), takeSnapshot(*drawn));
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
  std::uint64_t getNumStateComponents() const override { return 1; }
  void getStateComponentTypes(std::uint64_t, txClassID* classes, std::size_t* n) const override {
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

TEST(Rewind, TakesBackTheDrawsAndTheirCount) {
  Stream const stream = make("mt19937ar");
  normals(*stream, 5);
  Stream earlier = stream->clone();
  std::string const before = takeSnapshot(*stream);
  auto const drawn = std::pair(stream->drawCounts().drawn(), randstream::drawnInThread());
  stream->setRandnAlg("Polar");
  normals(*stream, 5);
  stream->rewind(std::move(earlier));
  EXPECT_EQ(takeSnapshot(*stream), before);
  EXPECT_EQ(std::pair(stream->drawCounts().drawn(), randstream::drawnInThread()), drawn);
}

TEST(DrawCounts, AreWhatTheGeneratorWasAskedFor) {
  std::vector<double> out(2000);
  double* const to = out.data();
  auto* const floats = reinterpret_cast<float*>(to);
  auto* const bytes = reinterpret_cast<std::uint8_t*>(to);
  std::vector<std::function<void(randstream&)>> const operations = {
      [&](randstream& s) { s.randuFcn(to, 1000); },
      [&](randstream& s) { s.randuFcn(floats, 250); },
      [&](randstream& s) { s.setAntithetic(true), s.randuFcn(to, 250); },
      [&](randstream& s) { s.randiFcn(1, 6, bytes, 250); },
      [&](randstream& s) { s.randnFcn(to, 7, true); },
      [&](randstream& s) { s.randnFcn(floats, 130, true); },
      [&](randstream& s) { s.setRandnAlg("Ziggurat"), s.randnFcn(to, 130, false); },
      [&](randstream& s) { s.setRandnAlg("Polar"), s.randnFcn(to, 7, false); },
      [&](randstream& s) { s.setRandnAlg("Inversion"), s.randnFcn(floats, 7, false); },
      [&](randstream& s) { s.randpermFcn(to, 20); },
      [&](randstream& s) { s.randkpermFcn(to, 300, 300); },
      [&](randstream& s) { s.randkpermFcn(to, 10, 1e6); },
      [&](randstream& s) { s.randkpermFcn(to, 200, 300); },
      [&](randstream& s) { s.advance(250); },
      [&](randstream& s) { s.reset(1), s.setFullPrecision(false), s.randuFcn(to, 0); },
  };
  for (auto const& operation : operations) {
    for (std::size_t const failsAfter : {5000, 0, 3, 110}) {
      Script script;
      script.uniforms.assign(failsAfter, 0.3);
      script.normals.assign(500, 0.5);
      randstream stream("scripted", 0, new ScriptedNormalPlugin(script), 1, 0);
      auto const before = randstream::drawnInThread();
      try {
        operation(stream);
      } catch (std::exception const&) {
      }
      auto const total = [](auto const& requests) {
        return std::accumulate(requests.begin(), requests.end(), std::size_t{0});
      };
      EXPECT_EQ(stream.drawCounts().uniforms, total(script.requests))
          << &operation - &operations[0];
      EXPECT_EQ(stream.drawCounts().normals, total(script.normalRequests));
      EXPECT_EQ(randstream::drawnInThread() - before, stream.drawCounts().drawn());
    }
  }
}

TEST(DrawCounts, TellJumpsAndMovesApartAndRefusedOnesNotAtAll) {
  Stream const stream = make("mrg32k3a");
  auto const& counts = stream->drawCounts();
  stream->advance(1'000'000);
  EXPECT_EQ(counts.passedOver, 1'000'000U);
  EXPECT_EQ(counts.moves, 0U);
  std::string const snapshot = takeSnapshot(*stream);
  unsigned char state[48] = {};
  stream->getStateBuf(state, sizeof state);
  std::uint64_t moves = 0;
  for (auto const& move : std::vector<std::function<void()>>{
           [&] { stream->reset(5); }, [&] { stream->setSubstream(2); },
           [&] { stream->setStateBuf(state, sizeof state); },
           [&] { restoreSnapshot(*stream, snapshot); }}) {
    move();
    EXPECT_EQ(counts.moves, ++moves);
  }
  std::fill(std::begin(state), std::end(state), 255);
  EXPECT_NE(identifierOf([&] { stream->setStateBuf(state, sizeof state); }), "no error");
  EXPECT_NE(identifierOf([&] { stream->setSubstream(~0UL); }), "no error");
  EXPECT_NE(identifierOf([&] { restoreSnapshot(*stream, snapshot.substr(1)); }), "no error");
  EXPECT_EQ(counts.moves, moves);
  EXPECT_EQ(counts.drawn(), 1'000'000U);
}

}  // namespace
