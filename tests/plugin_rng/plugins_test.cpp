// The plug-ins of all generators: factories, limits, states, normals, and large fills that give the
// numbers of small ones.

#include <gtest/gtest.h>
#include <strings.h>
#include <tbb/global_control.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <sstream>

#include "plugin_rng/large_results.h"
#include "plugin_rng/legacy_plugin.h"
#include "plugin_rng/plugin_rng.h"
#include "tests/support/identifiers.h"
#include "tests/support/plugins.h"
#include "tests/support/turkish_locale.h"
#include "tfl_rng/core_rng.h"
#include "tfl_rng/minimal_standard.h"

namespace {

using namespace testing_support;

constexpr std::uint64_t kMax = ~std::uint64_t{0};

class AnyPlugin : public testing::TestWithParam<Generator> {
 protected:
  static std::string identifier(std::string const& key) {
    return "TALVOR:RandStream:" + GetParam().name + ":" + key;
  }
  static std::string creation(std::uint64_t numStreams, std::uint64_t index,
                              std::uint64_t nParams) {
    return identifierOf([&] {
      const double params[] = {0, 0};
      GetParam().make(numStreams, index, 0, params, nParams)->destroy();
    });
  }
};
using StreamsPlugin = AnyPlugin;

TEST_P(AnyPlugin, FactoryChecksParametersThenStreams) {
  EXPECT_EQ(creation(1, 0, 0), "no error");
  EXPECT_EQ(creation(kMax, kMax, 1), identifier("InvalidParameter"));
  if (!GetParam().hasStreams()) {
    EXPECT_EQ(creation(2, 0, 0), identifier("MultipleStreams"));
    EXPECT_EQ(creation(1, 1, 0), identifier("MultipleStreams"));
    return;
  }
  const std::uint64_t limit = GetParam().numStreams;
  EXPECT_EQ(creation(limit, limit - 1, 0), "no error");
  // The index is held against the generator's limit only.
  EXPECT_EQ(creation(1, limit - 1, 0), "no error");
  for (const std::uint64_t beyond : {limit + 1, kMax})
    EXPECT_EQ(creation(beyond, 0, 0), identifier("TooManyStreams"));
  for (const std::uint64_t beyond : {limit, kMax})
    EXPECT_EQ(creation(1, beyond, 0), identifier("TooManyStreams"));
}

TEST_P(AnyPlugin, StateIsOneComponent) {
  const Plugin plugin(GetParam(), 1);
  txClassID stateClass;
  std::size_t length;
  plugin->getStateComponentTypes(1, &stateClass, &length);
  EXPECT_EQ(plugin->getNumStateComponents(), 1u);
  EXPECT_EQ(static_cast<int>(stateClass), GetParam().stateClass);
  EXPECT_EQ(length, GetParam().stateLen);
}

TEST_P(AnyPlugin, StateReadAndWrittenBackRepeatsTheDraws) {
  for (const std::uint32_t seed : {0u, 1u, 0xffffffffu}) {
    for (const std::size_t drawn : {0, 1, 2, 3, 57, 700}) {
      const Plugin plugin(GetParam(), seed), other(GetParam(), 77);
      plugin.draw(drawn);
      const State state = plugin.state();
      other.setState(state);
      EXPECT_EQ(other.state(), state);
      EXPECT_EQ(other.draw(100), plugin.draw(100));
    }
  }
}

TEST_P(AnyPlugin, ResetStartsTheSeedsSequenceAgain) {
  const Plugin plugin(GetParam(), 5);
  const auto expected = plugin.draw(100);
  EXPECT_NE(plugin.draw(100), expected);
  plugin->reset(5);
  EXPECT_EQ(plugin.draw(100), expected);
}

TEST_P(AnyPlugin, MakesNormalsByItsOwnMethodOnly) {
  const Plugin plugin(GetParam(), 1);
  auto* const normals = plugin.normals();
  std::string const own = GetParam().normals;
  ASSERT_EQ(normals != nullptr, !own.empty());
  if (!normals) return;
  EXPECT_EQ(normals->getDefaultRandnAlg(), own);
  for (char const* name : {"polar", "POLAR", "ziggurat", "Ziggurat", "INVERSION", "inversio", "",
                           "Polar ", "Ziggurat ", "inversion "})
    EXPECT_EQ(normals->setRandnAlg(name), strcasecmp(name, own.c_str()) == 0) << name;
  EXPECT_FALSE(normals->setRandnAlg(nullptr));
}

using MethodsInTurkish = TurkishLocale;

TEST_F(MethodsInTurkish, AreComparedInAscii) {
  for (Generator const& generator : allGenerators()) {
    if (generator.normals.empty()) continue;
    std::string capitals = generator.normals;
    for (char& c : capitals) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    EXPECT_TRUE(Plugin(generator, 1).normals()->setRandnAlg(capitals.c_str())) << generator.name;
  }
  EXPECT_TRUE(plugin_rng::legacy_plugin().setRandnAlg("V5 (ZIGGURAT)"));
}

TEST_P(StreamsPlugin, ReportsItsLimits) {
  const Plugin plugin(GetParam(), 0, 5);
  auto const& view = plugin.streams();
  EXPECT_EQ(view.getStreamLimits(), std::pair(GetParam().numStreams, GetParam().log2StreamLen));
  EXPECT_EQ(view.getSubstreamLimits(),
            std::pair(GetParam().numSubstreams, GetParam().log2SubstreamLen));
  EXPECT_EQ(view.checkNumStreams(GetParam().numStreams), 0);
  EXPECT_EQ(view.checkNumStreams(GetParam().numStreams + 1), 3);
}

TEST_P(StreamsPlugin, SubstreamBeyondTheLastIsRefusedWithoutATrace) {
  const Plugin plugin(GetParam(), 3);
  auto& view = plugin.streams();
  const std::uint64_t last = GetParam().numSubstreams - 1;
  view.setSubstream(last);
  EXPECT_EQ(view.getSubstream(), last);
  view.advance(17);
  const State before = plugin.state();
  for (const std::uint64_t index : {last + 1, std::uint64_t{1} << 63, kMax})
    EXPECT_EQ(identifierOf([&] { view.setSubstream(index); }),
              identifier("SubstreamsIndexOutOfRange"));
  EXPECT_EQ(view.getSubstream(), last);
  EXPECT_EQ(plugin.state(), before);
}

// Large fills against the same numbers fetched in requests that stay serial. `draw(plugin, out, n)`
// fills out[0, n).
template <class Draw>
void expectSerialNumbers(Generator const& generator, Draw draw, bool full) {
  for (const std::size_t n : {0, 1, 1023, 1024, 1025, 8192, 8193, 131072, 131073, 1000007}) {
    const Plugin serial(generator, 6, 1);
    serial->setFullPrecision(full);
    serial.draw(3);  // to an odd position inside a block
    const State start = serial.state();
    std::vector<double> expected(n);
    for (std::size_t at = 0; at < n; at += generator.serialLimit)
      draw(serial, expected.data() + at, std::min(generator.serialLimit, n - at));
    for (const std::size_t threads : {1, 2, 3, 8}) {
      tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
      const Plugin large(generator, 6, 1);
      large->setFullPrecision(full);
      large.setState(start);
      std::vector<double> values(n);
      draw(large, values.data(), n);
      ASSERT_TRUE(values == expected) << n << " on " << threads;
      ASSERT_EQ(large.state(), serial.state()) << n << " on " << threads;
    }
  }
}

TEST_P(StreamsPlugin, LargeFillsAreTheSerialOnes) {
  for (const bool full : {true, false})
    expectSerialNumbers(
        GetParam(), [](Plugin const& p, double* out, std::size_t n) { p->randu(out, n); }, full);
  if (GetParam().normals.empty()) return;
  expectSerialNumbers(
      GetParam(), [](Plugin const& p, double* out, std::size_t n) { p.normals()->randn(out, n); },
      true);
}

// A result written past the caches, against one in two requests that are not.
TEST_P(AnyPlugin, ResultLargerThanTheCachesIsTheSame) {
  constexpr std::size_t kDraws = plugin_rng::kLeastStreamed;
  const Plugin parts(GetParam(), 8), whole(GetParam(), 8);
  std::vector<double> expected(kDraws + 1), values(kDraws + 1);
  parts->randu(expected.data() + 1, kDraws - 3);
  parts->randu(expected.data() + 1 + kDraws - 3, 3);
  whole->randu(values.data() + 1, kDraws);
  EXPECT_TRUE(values == expected);
  EXPECT_EQ(whole.state(), parts.state());
}

TEST_P(StreamsPlugin, LargeFillKeepsTheSubstream) {
  const Plugin plugin(GetParam(), 6, 1);
  plugin.streams().setSubstream(9);
  plugin.draw(200000);
  EXPECT_EQ(plugin.streams().getSubstream(), 9u);
}

auto const kNameOf = [](auto const& info) { return info.param.name; };
INSTANTIATE_TEST_SUITE_P(Generators, AnyPlugin, testing::ValuesIn(allGenerators()), kNameOf);
INSTANTIATE_TEST_SUITE_P(Generators, StreamsPlugin, testing::ValuesIn(generatorsWithStreams()),
                         kNameOf);

// A row of offered_states.txt.
struct Offer {
  Generator generator;
  std::string text;
};
void PrintTo(Offer const& offer, std::ostream* out) { *out << offer.text; }

// "0-2,6=value" for one class of elements.
struct Assignment {
  std::vector<std::size_t> words;
  std::uint64_t bits;

  Assignment(std::string const& text, int stateClass) {
    std::string const value = text.substr(text.find('=') + 1);
    bits = stateClass == plugin_rng::IPluginRNG::doubleState
               ? std::bit_cast<std::uint64_t>(std::strtod(value.c_str(), nullptr))
               : std::stoull(value, nullptr, 0);
    std::istringstream list(text.substr(0, text.find('=')));
    for (std::string range; std::getline(list, range, ',');) {
      std::size_t const first = std::stoul(range);
      std::size_t const dash = range.find('-');
      std::size_t const last =
          dash == std::string::npos ? first : std::stoul(range.substr(dash + 1));
      for (std::size_t i = first; i <= last; ++i) words.push_back(i);
    }
  }
  void apply(State& state) const {
    for (std::size_t const word : words) state.at(word) = bits;
  }
};

class OfferedState : public testing::TestWithParam<Offer> {
 protected:
  void expectResult(std::vector<Assignment> const& offered, std::vector<Assignment> const& loaded,
                    bool refused) {
    Generator const& generator = GetParam().generator;
    const Plugin plugin(generator, 8);
    plugin.draw(1);
    const State before = plugin.state();
    State expected = before;
    for (Assignment const& assignment : offered) assignment.apply(expected);
    const std::string error = identifierOf([&] { plugin.setState(expected); });
    EXPECT_EQ(error,
              refused ? "TALVOR:RandStream:" + generator.name + ":InvalidState" : "no error");
    for (Assignment const& assignment : loaded) assignment.apply(expected);
    EXPECT_EQ(plugin.state(), refused ? before : expected);
    for (const double u : plugin.draw(100)) ASSERT_TRUE(u > 0 && u < 1);
    if (plugin.normals()) {
      std::vector<double> normals(100);
      plugin.normals()->randn(normals.data(), normals.size());
      for (const double x : normals) ASSERT_TRUE(std::isfinite(x));
    }
  }
};

TEST_P(OfferedState, IsLoadedAsToldOrRefusedWithoutATrace) {
  std::istringstream fields(GetParam().text);
  std::vector<Assignment> offered, loaded;
  bool each = false, refused = false, result = false;
  std::string field;
  fields >> field;  // the name
  while (fields >> field) {
    if (field == "each")
      each = true;
    else if (field == "->")
      result = true;
    else if (field == "refused")
      refused = true;
    else if (field != "kept")
      (result ? loaded : offered).emplace_back(field, GetParam().generator.stateClass);
  }
  ASSERT_FALSE(offered.empty());
  if (!each) return expectResult(offered, loaded, refused);
  for (std::size_t const word : offered[0].words) {
    SCOPED_TRACE(word);
    Assignment one = offered[0];
    one.words = {word};
    expectResult({one}, {}, refused);
  }
}

std::vector<Offer> allOffers() {
  std::vector<Offer> offers;
  auto const generators = allGenerators();
  for (auto const& row : known_answers::rows("plugin_rng/offered_states.txt")) {
    std::string text;
    for (auto const& field : row) text += field + " ";
    offers.push_back({*std::ranges::find(generators, row[0], &Generator::name), text});
  }
  return offers;
}
INSTANTIATE_TEST_SUITE_P(Table, OfferedState, testing::ValuesIn(allOffers()));

// A core whose state lets its method for normals accept nothing.
class Degenerate final : public tfl_rng::CoreNormalRNG {
 public:
  Degenerate() : CoreNormalRNG(true) {}
  void reset(std::uint32_t) override {}
  void randu(double*, std::size_t) override {}
  void randn(double*, std::size_t) override { throw tfl_rng::RejectionLimit(); }
};

}  // namespace

// It stands in no row of its own.
template <>
inline constexpr tfl_rng::Generator const* tfl_rng::kGeneratorOf<Degenerate> =
    tfl_rng::kGeneratorOf<tfl_rng::mcg16807>;

namespace {

struct DegeneratePlugin final : plugin_rng::PluginRNGRandn<Degenerate> {
  DegeneratePlugin() : PluginRNGRandn(boost::shared_ptr<Degenerate>(new Degenerate)) {}
  void getStateComponents(void* const*) const override {}
  void setStateComponents(void const* const*) override {}
};

TEST(PluginNormals, EndlessRejectionIsToldAsAnErrorOfTheLibrary) {
  double x;
  EXPECT_EQ(identifierOf([&] { DegeneratePlugin().randn(&x, 1); }),
            "TALVOR:RandStream:UnexpectedPluginError");
}

// The order of halves and words in a saved state.
TEST(SavedState, HoldsThreefryHighHalvesFirstAndPhiloxLowWordsFirst) {
  auto const generators = allGenerators();
  auto const at = [&](char const* name, std::uint32_t seed, std::size_t draws) {
    const Plugin plugin(*std::ranges::find(generators, name, &Generator::name), seed, 0xA00000005);
    plugin.streams().setSubstream(5);
    plugin.streams().advance(draws);
    return plugin.state();
  };
  EXPECT_EQ(at("threefry4x64_20", 0x12345678, 6),
            (State{0x40000000, 1, 0, 1, 0, 0, 0, 0, 0, 0x12345678, 0xA, 5, 0, 1, 0, 0, 2}));
  EXPECT_EQ(at("philox4x32_10", 0, 7), (State{3, 0x80000000, 2, 0, 6, 0xA, 1}));
}

TEST(ExchangeHalves, GivesThePublishedPairs) {
  int checked = 0;
  for (auto const& row : known_answers::rows("kat/minstd16807.txt")) {
    if (row.front() != "scramble") continue;
    auto const hex = [&](int i) {
      return static_cast<std::uint32_t>(std::stoul(row[i], nullptr, 16));
    };
    EXPECT_EQ(tfl_rng::exchangeHalves(hex(1)), hex(2)) << row[1];
    EXPECT_EQ(tfl_rng::exchangeHalves(hex(2)), hex(3)) << row[1];
    ++checked;
  }
  EXPECT_EQ(checked, 15);
}

}  // namespace
