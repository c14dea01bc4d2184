#include <gmock/gmock.h>

#include <numeric>

#include "rng/randstream.h"
#include "tests/support/scripted_plugin.h"

namespace {

using ::testing::ElementsAre;
using testing_support::Script;
using testing_support::ScriptedPlugin;

class Uniform : public ::testing::Test {
 protected:
  randstream& over(std::vector<double> uniforms) {
    script = {};
    script.uniforms = std::move(uniforms);
    stream = std::make_unique<randstream>("scripted", 0, new ScriptedPlugin(script), 1, 0);
    return *stream;
  }
  template <class T>
  std::vector<T> draw(std::size_t n) {
    std::vector<T> out(n);
    stream->randuFcn(out.data(), n);
    return out;
  }

  Script script;
  std::unique_ptr<randstream> stream;
};

TEST_F(Uniform, DoublesGoDownInOneCall) {
  over(std::vector<double>(250, 0.25));
  EXPECT_EQ(draw<double>(250), std::vector<double>(250, 0.25));
  EXPECT_THAT(script.requests, ElementsAre(250));
}

TEST_F(Uniform, ChunksAreOfHundredThenTheRest) {
  const std::vector<std::pair<std::size_t, std::vector<std::size_t>>> cases = {
      {0, {}}, {1, {1}}, {99, {99}}, {100, {100}}, {101, {100, 1}}, {250, {100, 100, 50}}};
  for (auto const& [n, chunks] : cases) {
    over(std::vector<double>(2 * n, 0.5));
    draw<float>(n);
    stream->setAntithetic(true);
    draw<double>(n);
    std::vector<std::size_t> twice = chunks;
    twice.insert(twice.end(), chunks.begin(), chunks.end());
    EXPECT_EQ(script.requests, twice) << n;
  }
}

TEST_F(Uniform, AntitheticDoublesStayInsideTheInterval) {
  over({0.5, 0.25, 0x1p-53, 0x1p-60, 0x1p-52, 1 - 0x1p-53}).setAntithetic(true);
  EXPECT_THAT(draw<double>(6),
              ElementsAre(0.5, 0.75, 0.99999999999999988898, 1 - 0x1p-53, 1 - 0x1p-52, 0x1p-53));
}

TEST_F(Uniform, FloatsAreRoundedAndNeverZeroOrOne) {
  const double roundsToOne = 1 - 0x1p-26;
  const double roundsToZero = 0x1p-160;
  over({0.1, roundsToOne, 1 - 0x1p-53, roundsToZero, 0x1p-53});
  EXPECT_THAT(draw<float>(5),
              ElementsAre(0.1F, 0.99999994F, 0.99999994F, 1.1754944e-38F, 0x1p-53F));
}

TEST_F(Uniform, AntitheticFloatsAreNeverZeroOrOne) {
  // 1-u rounds to one for u up to 2^-25; 1-u is 2^-53 for the largest u.
  over({0.25, 0x1p-53, 0x1p-60, 0x1p-26, 0x1p-24, 1 - 0x1p-53}).setAntithetic(true);
  EXPECT_THAT(draw<float>(6),
              ElementsAre(0.75F, 0.99999994F, 0.99999994F, 0.99999994F, 0.99999994F, 0x1p-53F));
}

TEST_F(Uniform, FloatsAcrossChunksKeepTheirPlaces) {
  std::vector<double> ramp(250);
  std::iota(ramp.begin(), ramp.end(), 1.0);
  for (double& u : ramp) u /= 256;
  over(ramp);
  const auto floats = draw<float>(250);
  EXPECT_TRUE(std::equal(floats.begin(), floats.end(), ramp.begin()));
}

}  // namespace
