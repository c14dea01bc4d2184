// The plug-ins of mcg16807, shr3cong and swb2712: factories, and states that travel as doubles.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "plugin_rng/exchange_halves.h"
#include "plugin_rng/factories.h"
#include "tests/support/identifiers.h"
#include "tests/support/known_answers.h"

namespace {

using plugin_rng::IPluginRNG;
using plugin_rng::IPluginRNGRandn;
using testing_support::identifierOf;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kDenormal = std::numeric_limits<double>::denorm_min();

struct Destroy {
  void operator()(IPluginRNG* plugin) const { plugin->destroy(); }
};
using PluginPtr = std::unique_ptr<IPluginRNG, Destroy>;
using State = std::vector<double>;

State stateOf(IPluginRNG const& plugin) {
  txClassID stateClass;
  std::size_t length;
  plugin.getStateComponentTypes(1, &stateClass, &length);
  State state(length);
  void* buffers[] = {state.data()};
  plugin.getStateComponents(buffers);
  return state;
}

void load(IPluginRNG& plugin, State const& state) {
  void const* buffers[] = {state.data()};
  plugin.setStateComponents(buffers);
}

std::vector<double> draw(IPluginRNG& plugin, std::size_t n = 100) {
  std::vector<double> u(n);
  plugin.randu(u.data(), n);
  return u;
}

struct Generator {
  char const* name;
  plugin_rng::Factory make;
  std::size_t stateLen;
  char const* normals;  // "" when it makes none
};

std::ostream& operator<<(std::ostream& out, Generator const& g) { return out << g.name; }

class OlderPlugin : public testing::TestWithParam<Generator> {
 protected:
  static PluginPtr make(std::uint32_t seed) {
    return PluginPtr(GetParam().make(1, 0, seed, nullptr, 0));
  }
  static std::string identifier(std::string const& key) {
    return std::string("TALVOR:RandStream:") + GetParam().name + ":" + key;
  }
};

TEST_P(OlderPlugin, FactoryRefusesParametersFirstThenMoreThanOneStream) {
  auto const create = [](std::size_t numStreams, std::size_t streamIndex, std::size_t nParams) {
    return identifierOf([&] {
      const double params[] = {0, 0};
      PluginPtr(GetParam().make(numStreams, streamIndex, 0, params, nParams));
    });
  };
  EXPECT_EQ(create(1, 0, 0), "no error");
  EXPECT_EQ(create(2, 1, 1), identifier("InvalidParameter"));
  EXPECT_EQ(create(2, 0, 0), identifier("MultipleStreams"));
  EXPECT_EQ(create(1, 1, 0), identifier("MultipleStreams"));
}

TEST_P(OlderPlugin, StateIsOneComponentOfDoubles) {
  auto const plugin = make(1);
  txClassID stateClass;
  std::size_t length;
  plugin->getStateComponentTypes(1, &stateClass, &length);
  EXPECT_EQ(plugin->getNumStateComponents(), 1u);
  EXPECT_EQ(static_cast<int>(stateClass), IPluginRNG::doubleState);
  EXPECT_EQ(length, GetParam().stateLen);
}

TEST_P(OlderPlugin, StateReadAndWrittenBackRepeatsTheDraws) {
  auto const plugin = make(42);
  draw(*plugin, 57);
  auto const state = stateOf(*plugin);
  auto const expected = draw(*plugin);
  auto const other = make(7);
  load(*other, state);
  EXPECT_EQ(stateOf(*other), state);
  EXPECT_EQ(draw(*other), expected);
}

TEST_P(OlderPlugin, ResetStartsTheSeedsSequenceAgain) {
  auto const plugin = make(5);
  auto const expected = draw(*plugin);
  EXPECT_NE(draw(*plugin), expected);
  plugin->reset(5);
  EXPECT_EQ(draw(*plugin), expected);
}

TEST_P(OlderPlugin, MakesNormalsByItsOwnMethodOnly) {
  auto const plugin = make(1);
  auto* normal = dynamic_cast<IPluginRNGRandn*>(plugin.get());
  const std::string own = GetParam().normals;
  ASSERT_EQ(normal != nullptr, !own.empty());
  if (!normal) return;
  EXPECT_EQ(normal->getDefaultRandnAlg(), own);
  for (char const* name : {"polar", "POLAR", "ziggurat", "Ziggurat", "Inversion", "", "Polar "}) {
    EXPECT_EQ(normal->setRandnAlg(name), strcasecmp(name, own.c_str()) == 0) << name;
  }
  EXPECT_FALSE(normal->setRandnAlg(nullptr));
}

INSTANTIATE_TEST_SUITE_P(
    Generators, OlderPlugin,
    testing::Values(Generator{"mcg16807", plugin_rng::make_mcg16807, 1, "Polar"},
                    Generator{"shr3cong", plugin_rng::make_shr3cong, 2, "Ziggurat"},
                    Generator{"swb2712", plugin_rng::make_swb2712, 35, ""}),
    testing::PrintToStringParamName());

// One state offered to one generator: refused, or what is read back.
struct Offer {
  std::string what;
  Generator generator;
  State offered;
  State loaded;  // empty: refused
};

std::ostream& operator<<(std::ostream& out, Offer const& o) { return out << o.what; }

class OfferedState : public testing::TestWithParam<Offer> {};

TEST_P(OfferedState, IsLoadedAsToldOrRefusedWithoutATrace) {
  auto const& generator = GetParam().generator;
  auto const& offered = GetParam().offered;
  auto const& loaded = GetParam().loaded;
  PluginPtr plugin(generator.make(1, 0, 99, nullptr, 0));
  PluginPtr untouched(generator.make(1, 0, 99, nullptr, 0));
  auto const error = identifierOf([&] { load(*plugin, offered); });
  if (loaded.empty()) {
    EXPECT_EQ(error, std::string("TALVOR:RandStream:") + generator.name + ":InvalidState");
    EXPECT_EQ(stateOf(*plugin), stateOf(*untouched));
    EXPECT_EQ(draw(*plugin), draw(*untouched));
  } else {
    EXPECT_EQ(error, "no error");
    EXPECT_EQ(stateOf(*plugin), loaded);
    for (const double u : draw(*plugin)) ASSERT_TRUE(u > 0 && u < 1);
  }
}

std::vector<Offer> mcg16807Offers() {
  const Generator g{"mcg16807", plugin_rng::make_mcg16807, 1, "Polar"};
  return {
      {"zero", g, {0}, {}},
      {"modulus", g, {0x7fffffff}, {}},
      {"one word below the modulus", g, {0x7ffeffff}, {0x7ffeffff}},
      {"word one", g, {65536}, {65536}},
      {"fraction truncates to zero", g, {0.75}, {}},
      {"fraction is cut", g, {65536.9}, {65536}},
      {"bit 31 moves to bit 15", g, {2147483648.0}, {32768}},
      {"low bits of two to the 32 and more", g, {4294967296.0 + 65536}, {65536}},
      {"two to the 32", g, {4294967296.0}, {}},
      {"minus one", g, {-1}, {}},  // word 0x80007fff
      {"negative with good low bits", g, {-4294901760.0}, {65536}},
      {"NaN", g, {kNaN}, {}},
      {"infinity", g, {kInf}, {}},
      {"minus infinity", g, {-kInf}, {}},
      {"two to the 63", g, {0x1p63}, {}},
      {"beyond two to the 64", g, {0x1p64 + 65536}, {}},
      {"1e300", g, {1e300}, {}},
      {"denormal", g, {kDenormal}, {}},
  };
}

std::vector<Offer> shr3congOffers() {
  const Generator g{"shr3cong", plugin_rng::make_shr3cong, 2, "Ziggurat"};
  return {
      {"zero shift register", g, {5, 0}, {}},
      {"minus zero shift register", g, {5, -0.0}, {}},
      {"least words", g, {0, 1}, {0, 1}},
      {"largest words", g, {4294967295.0, 4294967295.0}, {4294967295.0, 4294967295.0}},
      {"fraction of a shift register", g, {1.5, 0.5}, {1, 521288629}},
      {"shift register without low bits", g, {0x1p32 + 1, 0x1p32}, {1, 521288629}},
      {"negative", g, {-1, -1}, {4294967295.0, 4294967295.0}},
      {"NaN", g, {kNaN, kNaN}, {0, 521288629}},
      {"infinities", g, {kInf, -kInf}, {0, 521288629}},
      {"beyond two to the 64", g, {0x1p65, 1e300}, {0, 521288629}},
      {"denormal", g, {kDenormal, kDenormal}, {0, 521288629}},
  };
}

std::vector<Offer> swb2712Offers() {
  const Generator g{"swb2712", plugin_rng::make_swb2712, 35, ""};
  State half(35, 0.5);
  half[32] = half[33] = half[34] = 0;
  auto const with = [&](std::size_t i, double value) {
    State state = half;
    state[i] = value;
    return state;
  };
  constexpr double ulp = 0x1p-52;
  std::vector<Offer> offers = {
      {"all lags a half", g, half, half},
      {"all zero", g, State(35, 0), {}},
      {"least lag value", g, with(0, 0x1p-53), with(0, 0x1p-53)},
      {"largest lag value", g, with(31, 1 - 0x1p-53), with(31, 1 - 0x1p-53)},
      {"lag value off the grid", g, with(3, 0x1.8p-53), with(3, 0x1.8p-53)},
      {"lag value below the least", g, with(31, 0x1.fp-54), {}},
      {"lag value zero", g, with(7, 0), {}},
      {"small borrow is none", g, with(32, 0x1.fp-54), half},
      {"any other borrow is one", g, with(32, 0.7), with(32, 0x1p-53)},
      {"position keeps five bits", g, with(33, 37 * ulp), with(33, 5 * ulp)},
      {"position is cut", g, with(33, 31.9 * ulp), with(33, 31 * ulp)},
      {"position near one", g, with(33, 1 - 0x1p-53), with(33, 31 * ulp)},
      {"largest counter", g, with(34, 4294967295.0 * ulp), with(34, 4294967295.0 * ulp)},
      {"counter keeps 32 bits", g, with(34, 4294967299.0 * ulp), with(34, 3 * ulp)},
      {"denormal counters", g, with(33, kDenormal), half},
  };
  for (const std::size_t i : {0u, 31u, 32u, 33u, 34u}) {
    for (const double value : {1.0, -0x1p-60, -kDenormal, kNaN, kInf, -kInf, 1e300, 0x1p64}) {
      offers.push_back(
          {"value " + std::to_string(i) + " " + std::to_string(value), g, with(i, value), {}});
    }
  }
  return offers;
}

INSTANTIATE_TEST_SUITE_P(Mcg16807, OfferedState, testing::ValuesIn(mcg16807Offers()));
INSTANTIATE_TEST_SUITE_P(Shr3cong, OfferedState, testing::ValuesIn(shr3congOffers()));
INSTANTIATE_TEST_SUITE_P(Swb2712, OfferedState, testing::ValuesIn(swb2712Offers()));

TEST(ExchangeHalves, GivesThePublishedPairs) {
  int checked = 0;
  auto const blocks = known_answers::read("minstd16807.txt");
  for (auto const& row : blocks.front().rows) {
    if (row.front() != "scramble") continue;
    auto const hex = [&](int i) {
      return static_cast<std::uint32_t>(std::stoul(row[i], nullptr, 16));
    };
    EXPECT_EQ(plugin_rng::exchangeHalves(hex(1)), hex(2)) << row[1];
    EXPECT_EQ(plugin_rng::exchangeHalves(hex(2)), hex(3)) << row[1];
    ++checked;
  }
  EXPECT_EQ(checked, 15);
}

}  // namespace
