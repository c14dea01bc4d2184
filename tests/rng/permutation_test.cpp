#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <map>
#include <numeric>
#include <random>
#include <set>

#include "embedded_host/allocator.h"
#include "rng/mr_functions.h"
#include "statistics/p_values.h"
#include "tests/support/identifiers.h"
#include "tests/support/scripted_plugin.h"

namespace {

using ::testing::ElementsAre;
using testing_support::identifierOf;
using testing_support::Script;
using testing_support::ScriptedPlugin;

class Permutation : public ::testing::Test {
 protected:
  std::vector<double> select(std::size_t k, double n, std::vector<double> uniforms) {
    script = {};
    script.uniforms = std::move(uniforms);
    std::vector<double> out(k);
    stream.randkpermFcn(out.data(), k, n);
    return out;
  }
  std::vector<std::size_t> requestsOf(std::size_t k, double n) {
    select(k, n, std::vector<double>(2 * k, 0.25));
    return script.requests;
  }

  Script script;
  randstream stream{"scripted", 0, new ScriptedPlugin(script), 1, 0};
};

TEST_F(Permutation, FullOneIsTheOrderOfItsUniformsTiesInPlace) {
  script.uniforms = {0.5, 0.125, 0.75, 0.125, 0.25};
  double out[5];
  stream.randpermFcn(out, 5);
  EXPECT_THAT(out, ElementsAre(2, 4, 5, 1, 3));
  EXPECT_THAT(script.requests, ElementsAre(5));
  stream.setAntithetic(true);
  script.used = 0;
  stream.randpermFcn(out, 5);
  EXPECT_THAT(out, ElementsAre(2, 4, 5, 1, 3)) << "antithetic mode plays no part";
}

TEST_F(Permutation, FullOneAsksThePluginForItsUniformsAndNothingElse) {
  // Neither its state nor anything else, however the draw or the sort behind it ends.
  struct DrawsOnly : ScriptedPlugin {
    using ScriptedPlugin::ScriptedPlugin;
    std::uint64_t getNumStateComponents() const override { throw std::logic_error("asked"); }
  };
  randstream sampled("scripted", 0, new DrawsOnly(script), 1, 0);
  std::vector<double> out(100);
  script.uniforms.assign(100, 0.5);
  sampled.randpermFcn(out.data(), 100);
  EXPECT_EQ(out[99], 100);
  EXPECT_THROW(sampled.randpermFcn(out.data(), 100), std::out_of_range);

  bool failed = true;
  for (long request = 1; failed; ++request) {
    script.used = 0;
    script.requests.clear();
    embedded_host::FailingAllocation const failing(request);
    const std::string error = identifierOf([&] { sampled.randpermFcn(out.data(), 100); });
    failed = failing.happened();
    EXPECT_EQ(error, failed ? "TALVOR:nomem" : "no error");
    EXPECT_LE(script.requests.size(), 1U);
  }
  EXPECT_THAT(script.requests, ElementsAre(100));
  EXPECT_TRUE(script.calls.empty());
}

TEST_F(Permutation, InsideOutShuffleFollowsItsTargets) {
  // i = 2: j = 0; i = 3: j = 2 (in place); i = 4: j = 1.
  EXPECT_THAT(select(4, 4, {0.1, 0.9, 0.3}), ElementsAre(2, 4, 3, 1));
  EXPECT_THAT(script.requests, ElementsAre(3));
  EXPECT_THAT(select(1, 1, {}), ElementsAre(1));
  EXPECT_TRUE(script.requests.empty());
}

// Of an array of 20, and of one that is too large to be written down.
TEST_F(Permutation, ShuffleTakesFromTheTop) {
  for (const double n : {20.0, 1000.0}) {
    // j = 5, then a[5] is the last; j = 5 again gives that; then the last gives itself.
    EXPECT_THAT(select(3, n, {5.5 / n, 5.5 / (n - 1), 1 - 0x1p-53}), ElementsAre(6, n, n - 2));
    // The entry moved down is found again after its position was the last one.
    EXPECT_THAT(select(3, n, {(n - 1.5) / n, 0.5 / (n - 1), 0.5 / (n - 2)}),
                ElementsAre(n - 1, 1, n));
  }
}

// The selection's definition: k steps from the top of an array of which only changes are kept.
std::vector<double> takenFromTop(double n, std::vector<double> const& uniforms) {
  std::map<double, double> changed;
  const auto at = [&](double position) {
    const auto found = changed.find(position);
    return found == changed.end() ? position : found->second;
  };
  std::vector<double> taken;
  for (const double u : uniforms) {
    const double target = std::trunc(n * u);
    taken.push_back(at(target) + 1);
    changed[target] = at(std::trunc(n - 1));
    --n;
  }
  return taken;
}

TEST_F(Permutation, FractionalCountReachesTheValueAboveIt) {
  constexpr double kLast = 1 - 0x1p-53;
  // Arrays that are written down, and one that is not.
  for (auto const& [k, n] : {std::pair{99, 400.5}, std::pair{20, 84.9}, std::pair{3, 1000.5}}) {
    std::vector<double> uniforms(static_cast<std::size_t>(k), kLast);
    EXPECT_EQ(select(uniforms.size(), n, uniforms)[0], std::ceil(n));
    for (std::size_t i = 0; i < uniforms.size(); ++i)
      uniforms[i] = std::array{kLast, 0.25, 1 - 1 / n, kLast, 0x1p-53}[i % 5];
    EXPECT_EQ(select(uniforms.size(), n, uniforms), takenFromTop(n, uniforms)) << n;
  }
}

TEST_F(Permutation, SequentialSelectionSkipsByTheCumulativeSearch) {
  // 2 of 4: u = 0.6 > 1/2, p = 1/2 + 1/2 * 2/3 = 5/6: candidate 2. Then 1 of 2 left: u = 0.4 <=
  // 1/2: candidate 3; its place: trunc(2 * 0.2) = 0.
  EXPECT_THAT(select(2, 4, {0.6, 0.9, 0.4, 0.2}), ElementsAre(3, 2));
  EXPECT_THAT(script.requests, ElementsAre(4));
}

TEST_F(Permutation, MethodIsChosenByKAndDrawsInChunks) {
  EXPECT_THAT(requestsOf(24, 100), ElementsAre(24));
  EXPECT_THAT(requestsOf(25, 100), ElementsAre(50));
  EXPECT_THAT(requestsOf(99, 100), ElementsAre(100, 98));
  EXPECT_THAT(requestsOf(100, 100), ElementsAre(99));
  EXPECT_THAT(requestsOf(250, 250), ElementsAre(100, 100, 49));
  EXPECT_THAT(requestsOf(130, 1000), ElementsAre(100, 30));
  EXPECT_TRUE(requestsOf(0, 0x1p60).empty()) << "k = 0 checks nothing";
}

TEST_F(Permutation, TooLargeArgumentsAreRefusedBeforeDrawing) {
  EXPECT_EQ(identifierOf([&] { select(1, 0x1p53, {}); }),
            "TALVOR:RandStream:randperm:inputNTooLarge");
  EXPECT_EQ(identifierOf([&] { select(6, 5, {}); }), "TALVOR:RandStream:randperm:inputKTooLarge");
  EXPECT_EQ(identifierOf([&] { select(1, -1, {}); }), "TALVOR:RandStream:randperm:inputKTooLarge");
  EXPECT_TRUE(script.requests.empty());
  EXPECT_THAT(select(1, 0x1p53 - 1, {1 - 0x1p-53}), ElementsAre(0x1p53 - 1));
}

class RealPermutation : public ::testing::Test {
 protected:
  std::unique_ptr<randstream> stream{mrCreateRNGStream("mt19937ar", 1, 0, 20, nullptr, 0)};
};

TEST_F(RealPermutation, SelectionsAreDistinctAndInRange) {
  std::mt19937 choose(1);
  for (int round = 0; round < 300; ++round) {
    const std::size_t n = 1 + choose() % (round % 3 == 0 ? 20 : 3000);
    const std::size_t k = round % 5 == 0 ? n : choose() % (n + 1);
    std::vector<double> out(k);
    stream->randkpermFcn(out.data(), k, static_cast<double>(n));
    const std::set<double> values(out.begin(), out.end());
    ASSERT_EQ(values.size(), k) << k << " of " << n;
    if (k > 0) {
      ASSERT_GE(*values.begin(), 1);
      ASSERT_LE(*values.rbegin(), static_cast<double>(n));
    }
  }
}

// The p-value of `cells` outcomes being equally likely, of which `draw` fills in one.
template <class Draw>
double uniformity(std::size_t cells, std::size_t draws, std::size_t length, Draw&& draw) {
  std::map<std::vector<double>, std::uint64_t> counts;
  std::vector<double> outcome(length);
  for (std::size_t i = 0; i < draws; ++i) {
    draw(outcome.data());
    ++counts[outcome];
  }
  EXPECT_EQ(counts.size(), cells);
  std::vector<std::uint64_t> each;
  for (auto const& [values, count] : counts) each.push_back(count);
  return statistics::familyWise(std::vector{statistics::chiSquareUniform(each)});
}

TEST_F(RealPermutation, AllOutcomesAreEquallyLikely) {
  EXPECT_GT(uniformity(120, 120'000, 5, [&](double* out) { stream->randkpermFcn(out, 5, 5.0); }),
            1e-6);
  EXPECT_GT(uniformity(120, 120'000, 5, [&](double* out) { stream->randpermFcn(out, 5); }), 1e-6);
  // 3 of 8 by sequential selection; 3 of 13 by the sparse shuffle.
  for (auto const& [n, cells] : {std::pair{8.0, 336}, std::pair{13.0, 1716}}) {
    auto const draw = [&, n = n](double* out) { stream->randkpermFcn(out, 3, n); };
    EXPECT_GT(uniformity(static_cast<std::size_t>(cells), 400'000, 3, draw), 1e-6) << n;
  }
}

}  // namespace
