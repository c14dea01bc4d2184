#include <gmock/gmock.h>

#include <cmath>

#include "rng/randstream.h"
#include "tests/support/identifiers.h"
#include "tests/support/known_answers.h"
#include "tests/support/scripted_plugin.h"

namespace {

using ::testing::ElementsAre;
using testing_support::identifierOf;
using testing_support::Script;
using testing_support::ScriptedNormalPlugin;
using testing_support::ScriptedPlugin;

// The 15-digit ziggurat tables, from the known answers and not from the code.
struct Tables {
  std::vector<double> x, f;
  Tables() {
    const auto blocks = known_answers::read("ziggurat256.txt");
    for (auto const& row : blocks[0].rows) {
      x.push_back(std::stod(row[1]));
      f.push_back(std::stod(row[2]));
    }
  }
};
Tables const& tables() {
  static const Tables instance;
  return instance;
}

class Normal : public ::testing::Test {
 protected:
  template <class Plugin = ScriptedPlugin>
  void over(char const* algorithm, std::vector<double> uniforms) {
    script = {};
    script.uniforms = std::move(uniforms);
    stream = std::make_unique<randstream>("scripted", 0, new Plugin(script), 1, 0);
    if (algorithm) stream->setRandnAlg(algorithm);
  }
  template <class T = double>
  std::vector<T> draw(std::size_t n, bool halfVariance = false) {
    std::vector<T> out(n);
    stream->randnFcn(out.data(), n, halfVariance);
    return out;
  }
  // A uniform that selects layer i.
  static double layer(int i) { return (i + 0.5) / 256; }
  // A uniform that puts the candidate of layer i half-way into its wedge.
  static double wedge(int i) {
    const auto at = static_cast<std::size_t>(i);
    return (1 + (tables().x[at] + tables().x[at + 1]) / 2 / tables().x[at + 1]) / 2;
  }

  Script script;
  std::unique_ptr<randstream> stream;
};

using Ziggurat = Normal;
using Polar = Normal;
using Inversion = Normal;

TEST_F(Ziggurat, InnerPartOfALayerIsAcceptedAtOnce) {
  over("ziggurat", {layer(76), 0.75, layer(0), 0.5, layer(200), 0.125});
  EXPECT_THAT(draw(3), ElementsAre(0.5 * tables().x[77], 0.0, -0.75 * tables().x[201]));
  EXPECT_THAT(script.requests, ElementsAre(6));
}

TEST_F(Ziggurat, WedgeTakesAThirdUniformAndTheLeftoverStaysInFront) {
  // The third uniform accepts near 0; the fourth is left over and selects the next layer.
  over("ziggurat", {layer(50), wedge(50), 0x1p-30, layer(7), 0.5});
  EXPECT_THAT(draw(2), ElementsAre((2 * wedge(50) - 1) * tables().x[51], 0.0));
  EXPECT_THAT(script.requests, ElementsAre(4, 1));
}

TEST_F(Ziggurat, WedgeRejectsAboveTheCurveAndRefillsForWhatIsMissing) {
  // Attempt 1 rejected, its wedge uniform drawn alone; attempt 2 accepted.
  over("ziggurat", {layer(50), wedge(50), 1 - 0x1p-53, layer(9), 0.25});
  EXPECT_THAT(draw(1), ElementsAre(-0.5 * tables().x[10]));
  EXPECT_THAT(script.requests, ElementsAre(2, 1, 2));
}

TEST_F(Ziggurat, WedgeRefillLeavesRoomForTheOutputsToCome) {
  // Two inner values, then a wedge that finds the store empty: it asks for 2*1-1 uniforms.
  over("ziggurat", {layer(1), 0.5, layer(2), 0.5, layer(50), wedge(50), 0x1p-30});
  EXPECT_THAT(draw(3), ElementsAre(0.0, 0.0, (2 * wedge(50) - 1) * tables().x[51]));
  EXPECT_THAT(script.requests, ElementsAre(6, 1));
}

TEST_F(Ziggurat, TailLiesBeyondItsStartOnTheSideOfTheCandidate) {
  constexpr double kStart = 3.65415288536101;
  const double t = 0.273661237329758 * std::log(0.5);
  for (const double u1 : {1 - 0x1p-40, 0x1p-40}) {
    // The first pair of tail uniforms fails t*t < y, the second passes.
    over("ziggurat", {layer(255), u1, 0x1p-30, 1 - 0x1p-20, 0.5, 0.5});
    const double z = draw(1)[0];
    EXPECT_NEAR(z, u1 > 0.5 ? kStart - t : t - kStart, 1e-14);
    EXPECT_THAT(script.requests, ElementsAre(2, 2, 2));
  }
}

TEST_F(Ziggurat, LongFillsWorkInChunksOfHundredNormals) {
  over("ziggurat", std::vector<double>(600, 0.5));
  draw(250);
  EXPECT_THAT(script.requests, ElementsAre(200, 200, 100));
  over("ziggurat", {});
  draw(0);
  EXPECT_TRUE(script.requests.empty());
}

// Marsaglia's polar method, evaluated with the C library: agrees to rounding.
std::pair<double, double> polarPair(double u, double v) {
  const double a = 2 * u - 1, b = 2 * v - 1, s = a * a + b * b;
  const double m = std::sqrt(-2 * std::log(s) / s);
  return {a * m, b * m};
}

TEST_F(Polar, OddCountKeepsPairMateForNextCall) {
  over("polar", {0.3, 0.6});
  const auto [first, second] = polarPair(0.3, 0.6);
  EXPECT_NEAR(draw(1)[0], first, 1e-15);
  EXPECT_NEAR(draw(1)[0], second, 1e-15);
  EXPECT_THAT(script.requests, ElementsAre(2));
}

TEST_F(Polar, PendingValueComesFirstInALaterLongerCall) {
  over("polar", {0.3, 0.6, 0.2, 0.5, 0.7, 0.6});
  draw(1);
  const auto later = draw(4);  // pending, one pair, half a pair
  EXPECT_THAT(script.requests, ElementsAre(2, 4));
  EXPECT_NEAR(later[0], polarPair(0.3, 0.6).second, 1e-15);
  EXPECT_NEAR(later[1], polarPair(0.2, 0.5).first, 1e-15);
  EXPECT_NEAR(later[2], polarPair(0.2, 0.5).second, 1e-15);
  EXPECT_NEAR(later[3], polarPair(0.7, 0.6).first, 1e-15);
  EXPECT_NEAR(draw(1)[0], polarPair(0.7, 0.6).second, 1e-15);
}

TEST_F(Polar, RejectionRefillsWithTwoUniformsForEachMissingPair) {
  // s > 1, then s == 0 are rejected; s == 1 is kept and gives a zero pair.
  over("polar", {0.99, 0.99, 0.5, 0.5, 1.0 - 0x1p-53, 0.4, 0.3, 0.6, 0.2, 0.5});
  const auto z = draw(4);
  EXPECT_THAT(script.requests, ElementsAre(4, 4, 2));
  EXPECT_NEAR(z[0], polarPair(0.3, 0.6).first, 1e-15);
  EXPECT_NEAR(z[3], polarPair(0.2, 0.5).second, 1e-15);
  over("polar", {0.5, 0x1p-60});
  EXPECT_THAT(draw(2), ElementsAre(0.0, 0.0));
}

TEST_F(Polar, PendingValueIsHandedOutOnceEvenIfThePluginThenFails) {
  over("polar", {0.3, 0.6});
  draw(1);
  EXPECT_THROW(draw(2), std::out_of_range);
  EXPECT_FALSE(stream->pendingNormal());
  EXPECT_THROW(draw(1), std::out_of_range) << "emitted again";
}

TEST_F(Polar, PendingValueCrossesChunksAndMethods) {
  over("polar", std::vector<double>(400, 0.3));
  draw(101);
  EXPECT_THAT(script.requests, ElementsAre(100, 2));
  script.requests.clear();
  stream->setRandnAlg("inversion");
  draw(1);
  stream->setRandnAlg("polar");
  draw(0);
  draw(1);
  EXPECT_THAT(script.requests, ElementsAre(1)) << "the pending value is emitted without a draw";
}

TEST_F(Polar, ResetDropsThePendingValueAndAdvanceKeepsIt) {
  over("polar", std::vector<double>(20, 0.3));
  draw(1);
  stream->advance(3);
  draw(1);
  EXPECT_THAT(script.requests, ElementsAre(2, 3));
  draw(1);
  stream->reset(1);
  draw(1);
  EXPECT_THAT(script.requests, ElementsAre(2, 3, 2, 2));
}

TEST_F(Inversion, TransformsOneUniformEach) {
  auto const rows = known_answers::read("as241.txt")[0].rows;
  std::vector<double> uniforms;
  for (auto const& row : rows) uniforms.push_back(std::stod(row[0]));
  over("inversion", uniforms);
  const auto z = draw(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i)
    EXPECT_NEAR(z[i], std::stod(rows[i][1]), 1e-15 * (1 + std::fabs(z[i]))) << rows[i][0];
  EXPECT_EQ(script.used, rows.size());
}

struct Delivery {
  bool antithetic, halfVariance;
};

class NormalDelivery : public Normal, public ::testing::WithParamInterface<Delivery> {
 protected:
  static double expected(double z) {
    if (GetParam().antithetic) z = -z;
    return GetParam().halfVariance ? z / 1.4142135623730951 : z;
  }
};

TEST_P(NormalDelivery, SignAndScaleApplyToEverySource) {
  const double z = -0.5 * tables().x[10];
  for (const bool native : {false, true}) {
    if (native)
      over<ScriptedNormalPlugin>(nullptr, {});
    else
      over("ziggurat", {layer(9), 0.25, layer(9), 0.25, layer(9), 0.25, layer(9), 0.25});
    script.normals = {z, 0.0};
    stream->setAntithetic(GetParam().antithetic);
    EXPECT_EQ(draw(1, GetParam().halfVariance)[0], expected(z));
    EXPECT_EQ(draw<float>(1, GetParam().halfVariance)[0], static_cast<float>(expected(z)));
    if (native) {
      const double zero = draw(2, GetParam().halfVariance)[1];
      EXPECT_EQ(std::signbit(zero), GetParam().antithetic);
      EXPECT_TRUE(script.requests.empty());
    }
  }
}
INSTANTIATE_TEST_SUITE_P(All, NormalDelivery,
                         ::testing::Values(Delivery{false, false}, Delivery{false, true},
                                           Delivery{true, false}, Delivery{true, true}));

TEST_F(Normal, NativeNormalsGoDownInOneCallForDoublesAndInChunksForFloats) {
  over<ScriptedNormalPlugin>(nullptr, {});
  script.normals.assign(250, 1.5);
  draw(250);
  EXPECT_THAT(script.normalRequests, ElementsAre(250));
  draw<float>(250);
  EXPECT_THAT(script.normalRequests, ElementsAre(250, 100, 100, 50));
}

TEST_F(Normal, MethodNamesIgnoreCaseAndAreReportedWithACapital) {
  over<ScriptedNormalPlugin>(nullptr, {});
  EXPECT_STREQ(stream->getRandnAlg(), "Scripted");
  const std::vector<std::pair<char const*, char const*>> names = {
      {"POLAR", "POLAR"}, {"polar", "Polar"}, {"zigGURAT", "ZigGURAT"}, {"scripted", "Scripted"}};
  for (auto const& [given, reported] : names) {
    stream->setRandnAlg(given);
    EXPECT_STREQ(stream->getRandnAlg(), reported);
  }
}

TEST_F(Normal, MethodNamesAreKeptUpToTheirRoom) {
  struct LongName : ScriptedNormalPlugin {
    using ScriptedNormalPlugin::ScriptedNormalPlugin;
    bool setRandnAlg(char const*) override { return true; }
  };
  over<LongName>("a method whose name has no room left", {});
  EXPECT_STREQ(stream->getRandnAlg(), "A method whose name has no room");
}

TEST_F(Normal, RefusedMethodLeavesTheStreamDrawingAsBefore) {
  over<ScriptedNormalPlugin>(nullptr, {});
  script.normals = {1.25};
  for (char const* name : {"gauss", "", static_cast<char const*>(nullptr)})
    EXPECT_EQ(identifierOf([&] { stream->setRandnAlg(name); }),
              "TALVOR:RandStream:set:UnknownRandnAlg");
  EXPECT_STREQ(stream->getRandnAlg(), "Scripted");
  EXPECT_THAT(draw(1), ElementsAre(1.25));
}

TEST_F(Normal, EndlessRejectionEndsWithAnErrorInsteadOfHanging) {
  // Polar: outside the circle; ziggurat: a point of a wedge above the curve.
  struct Constant : ScriptedPlugin {
    using ScriptedPlugin::ScriptedPlugin;
    void randu(double* out, std::size_t n) override { std::fill_n(out, n, 254.99 / 256); }
  };
  for (char const* method : {"polar", "ziggurat"}) {
    over<Constant>(method, {});
    EXPECT_EQ(identifierOf([&] { draw(1); }), "TALVOR:RandStream:UnexpectedPluginError");
  }
  // A pair that sends to the tail, then only pairs that lie outside it.
  struct Tail : ScriptedPlugin {
    using ScriptedPlugin::ScriptedPlugin;
    void randu(double* out, std::size_t n) override {
      ASSERT_EQ(n, 2U);
      out[0] = std::exchange(first, 0x1p-30);
      out[1] = 1 - 0x1p-20;
    }
    double first = layer(255);
  };
  over<Tail>("ziggurat", {});
  EXPECT_EQ(identifierOf([&] { draw(1); }), "TALVOR:RandStream:UnexpectedPluginError");
}

}  // namespace
