#include "tfl_rng/swb2712.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

#include "tests/support/every_target.h"
#include "tests/support/known_answers.h"

namespace {

using tfl_rng::swb2712;
using State = swb2712::State;

std::vector<double> answers(std::string const& title) {
  return known_answers::block("swb2712_plain.txt", title).doubles();
}

State stateOf(std::vector<double> const& lags) {
  State state{{}, false, 0, 0};
  std::ranges::copy(lags, state.lags.begin());
  return state;
}

// The unmixed value that the next draw adds to the ring.
double nextUnmixed(swb2712& core) {
  const auto position = core.state().position;
  double u;
  core.randu(&u, 1);
  return core.state().lags[position];
}

TEST(Swb2712, KeepsThePlainRecurrenceInItsRing) {
  swb2712 core(0, true);
  core.setState(stateOf(answers("init")));
  for (const double expected : answers("out")) ASSERT_EQ(nextUnmixed(core), expected);
  EXPECT_EQ(core.state().position, 8u);
  EXPECT_FALSE(core.state().borrow);
  EXPECT_TRUE(std::ranges::equal(core.state().lags, answers("table")));
  std::vector<double> rest(200'000 - 201);
  core.randu(rest.data(), rest.size());
  EXPECT_EQ(nextUnmixed(core), answers("nth").front());
}

TEST(Swb2712, BorrowTakesOneUnitAndZeroEntersAsTheSmallestUniform) {
  swb2712 core(0, true);
  State state{{}, true, 0, 0};
  state.lags.fill(0.5);
  core.setState(state);
  // From its first 0 on, the plain sequence differs by the rule for zeros.
  for (const double expected : answers("all lags 0.5, borrow 2^-53")) {
    const double z = nextUnmixed(core);
    if (expected == 0) {
      EXPECT_EQ(z, 0x1p-53);
      return;
    }
    ASSERT_EQ(z, expected);
  }
  FAIL() << "the known answers hold a 0";
}

// The exclusive-or of a draw with its unmixed value depends on the counter alone.
TEST(Swb2712, MixesEachValueWithTheHashOfItsCounter) {
  auto const bits = [](double u) { return static_cast<std::uint64_t>(std::ldexp(u, 53)); };
  auto const maskOf = [&](swb2712& core) {
    const auto position = core.state().position;
    double u;
    core.randu(&u, 1);
    return bits(u) ^ bits(core.state().lags[position]);
  };
  swb2712 a(1, true), b(2, true);
  for (swb2712* core : {&a, &b}) {
    State state = core->state();
    state.counter = 0 - 0x9e3779b9u;  // the next one is 0
    core->setState(state);
  }
  // Known values of the published finaliser: 0 -> 0, 0xffffffff -> 0x81f16f39.
  EXPECT_EQ(maskOf(a), std::uint64_t{0x81f16f39u >> 11} << 32);
  maskOf(b);
  EXPECT_EQ(a.state().counter, 0u);
  std::set<std::uint64_t> masks;
  for (int i = 0; i < 1000; ++i) {
    const auto mask = maskOf(a);
    ASSERT_EQ(mask, maskOf(b));
    ASSERT_LT(mask, std::uint64_t{1} << 53);
    masks.insert(mask);
  }
  EXPECT_EQ(masks.size(), 1000u);
}

// In scalar and in vector draws, of which a request of twelve has both.
TEST(Swb2712, MixedZeroIsDeliveredAsTheSmallestUniform) {
  State state = swb2712(4, true).state();
  state.position = 0;
  state.borrow = false;
  swb2712 core(0, true);
  core.setState(state);
  std::vector<double> drawn(12);
  core.randu(drawn.data(), drawn.size());
  // Each value is to become the mask that mixes it: those 12 back less those 27 back.
  for (std::size_t i = 0; i < drawn.size(); ++i) {
    const auto mask = static_cast<std::uint64_t>(std::ldexp(drawn[i], 53)) ^
                      static_cast<std::uint64_t>(std::ldexp(core.state().lags[i], 53));
    state.lags[20 + i] = std::ldexp(static_cast<double>(mask + 1), -53);
    state.lags[5 + i] = 0x1p-53;
  }
  every_target::run([&] {
    core.setState(state);
    core.randu(drawn.data(), drawn.size());
    EXPECT_EQ(drawn, std::vector<double>(12, 0x1p-53));
  });
}

TEST(Swb2712, SeedsGiveValidAndDistinctStates) {
  std::set<std::array<double, 32>> tables;
  for (const std::uint32_t seed : {0u, 1u, 2u, 5489u, 0x80000000u, 0xffffffffu}) {
    const swb2712 core(seed, true);
    auto const& lags = core.state().lags;
    EXPECT_TRUE(std::ranges::all_of(lags, [](double z) { return z >= 0x1p-53 && z < 1; }));
    EXPECT_EQ(core.state().counter, seed);
    tables.insert(lags);
  }
  EXPECT_EQ(tables.size(), 6u);
}

TEST(Swb2712, PrecisionModeDoesNotChangeDraws) {
  swb2712 full(3, true), reduced(3, false);
  std::vector<double> a(1000), b(1000);
  full.randu(a.data(), a.size());
  reduced.randu(b.data(), b.size());
  EXPECT_EQ(a, b);
}

TEST(Swb2712, LagValuesOffTheGridAreKeptAndCutWhereUsed) {
  State onGrid = swb2712(1, true).state();
  State offGrid = onGrid;
  // Values below 0.5 leave room for a further bit.
  for (double& z : onGrid.lags) z = std::floor(std::ldexp(z, 51)) * 0x1p-53;
  for (std::size_t i = 0; i < offGrid.lags.size(); ++i) offGrid.lags[i] = onGrid.lags[i] + 0x1p-54;
  swb2712 a(0, true), b(0, true);
  a.setState(onGrid);
  b.setState(offGrid);
  EXPECT_EQ(b.state().lags, offGrid.lags);
  for (int i = 0; i < 100; ++i) ASSERT_EQ(nextUnmixed(a), nextUnmixed(b));
}

}  // namespace
