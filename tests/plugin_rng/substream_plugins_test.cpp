// The plug-ins of the generators with streams: factories, limits, states, and large fills that give
// the numbers of small ones.

#include <gtest/gtest.h>
#include <tbb/global_control.h>

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "plugin_rng/factories.h"
#include "tests/support/identifiers.h"

namespace {

using plugin_rng::IPluginRNG;
using plugin_rng::IPluginRNGRandn;
using plugin_rng::IPluginRNGSubstreams;
using testing_support::identifierOf;

constexpr std::uint64_t kMax = ~std::uint64_t{0};

struct Destroy {
  void operator()(IPluginRNG* plugin) const { plugin->destroy(); }
};
using PluginPtr = std::unique_ptr<IPluginRNG, Destroy>;

// A state of either element type, as numbers.
using State = std::vector<std::uint64_t>;

struct Generator {
  char const* name;
  plugin_rng::Factory make;
  IPluginRNG::pluginStateClassID stateClass;
  std::size_t stateLen;
  std::uint64_t numStreams;
  std::uint64_t log2StreamLen;
  std::uint64_t numSubstreams;
  std::uint64_t log2SubstreamLen;
  bool normals;
  std::size_t serialLimit;
};

std::ostream& operator<<(std::ostream& out, Generator const& g) { return out << g.name; }

const Generator kMrg = {"mrg32k3a",
                        plugin_rng::make_mrg32k3a,
                        IPluginRNG::uint32State,
                        12,
                        1ull << 63,
                        127,
                        1ull << 51,
                        76,
                        false,
                        1024};
const Generator kMlfg = {"mlfg6331_64",
                         plugin_rng::make_mlfg6331_64,
                         IPluginRNG::uint64State,
                         130,
                         1ull << 61,
                         124,
                         1ull << 51,
                         72,
                         false,
                         131072};
const Generator kPhilox = {"philox4x32_10",
                           plugin_rng::make_philox4x32_10,
                           IPluginRNG::uint32State,
                           7,
                           kMax - 1,
                           128,
                           1ull << 63,
                           64,
                           true,
                           1024};
const Generator kThreefry = {"threefry4x64_20",
                             plugin_rng::make_threefry4x64_20,
                             IPluginRNG::uint32State,
                             17,
                             kMax - 1,
                             128,
                             1ull << 63,
                             64,
                             true,
                             1024};

PluginPtr make(Generator const& generator, std::uint32_t seed, std::size_t stream = 0) {
  return PluginPtr(generator.make(1, stream, seed, nullptr, 0));
}

template <class Word>
State readAs(IPluginRNG const& plugin, std::size_t length) {
  std::vector<Word> words(length);
  void* buffers[] = {words.data()};
  plugin.getStateComponents(buffers);
  return {words.begin(), words.end()};
}

template <class Word>
void writeAs(IPluginRNG& plugin, State const& state) {
  std::vector<Word> words;
  for (const std::uint64_t word : state) words.push_back(static_cast<Word>(word));
  void const* buffers[] = {words.data()};
  plugin.setStateComponents(buffers);
}

State read(Generator const& generator, IPluginRNG const& plugin) {
  return generator.stateClass == IPluginRNG::uint64State
             ? readAs<std::uint64_t>(plugin, generator.stateLen)
             : readAs<std::uint32_t>(plugin, generator.stateLen);
}

void write(Generator const& generator, IPluginRNG& plugin, State const& state) {
  if (generator.stateClass == IPluginRNG::uint64State) {
    writeAs<std::uint64_t>(plugin, state);
  } else {
    writeAs<std::uint32_t>(plugin, state);
  }
}

IPluginRNGSubstreams& substreams(IPluginRNG& plugin) {
  return dynamic_cast<IPluginRNGSubstreams&>(plugin);
}

class SubstreamPlugin : public testing::TestWithParam<Generator> {
 protected:
  static std::string identifier(std::string const& key) {
    return std::string("TALVOR:RandStream:") + GetParam().name + ":" + key;
  }
};

TEST_P(SubstreamPlugin, FactoryChecksParametersThenStreams) {
  const auto create = [](std::uint64_t numStreams, std::uint64_t index, std::size_t nParams) {
    return identifierOf([&] {
      const double params[] = {0, 0};
      PluginPtr(GetParam().make(numStreams, index, 0, params, nParams));
    });
  };
  const std::uint64_t limit = GetParam().numStreams;
  EXPECT_EQ(create(1, 0, 0), "no error");
  EXPECT_EQ(create(limit, limit - 1, 0), "no error");
  // The index is held against the generator's limit only.
  EXPECT_EQ(create(1, limit - 1, 0), "no error");
  EXPECT_EQ(create(limit + 1, 0, 0), identifier("TooManyStreams"));
  EXPECT_EQ(create(kMax, 0, 0), identifier("TooManyStreams"));
  EXPECT_EQ(create(1, limit, 0), identifier("TooManyStreams"));
  EXPECT_EQ(create(1, kMax, 0), identifier("TooManyStreams"));
  EXPECT_EQ(create(kMax, kMax, 1), identifier("InvalidParameter"));
}

TEST_P(SubstreamPlugin, ReportsItsLimitsAndState) {
  const auto plugin = make(GetParam(), 0, 5);
  auto const& view = substreams(*plugin);
  EXPECT_EQ(view.getStreamLimits(),
            std::make_pair(GetParam().numStreams, GetParam().log2StreamLen));
  EXPECT_EQ(view.getSubstreamLimits(),
            std::make_pair(GetParam().numSubstreams, GetParam().log2SubstreamLen));
  EXPECT_EQ(view.checkNumStreams(GetParam().numStreams), 0);
  EXPECT_EQ(view.checkNumStreams(GetParam().numStreams + 1), 3);
  txClassID stateClass;
  std::size_t length;
  plugin->getStateComponentTypes(1, &stateClass, &length);
  EXPECT_EQ(plugin->getNumStateComponents(), 1u);
  EXPECT_EQ(static_cast<int>(stateClass), GetParam().stateClass);
  EXPECT_EQ(length, GetParam().stateLen);
}

TEST_P(SubstreamPlugin, SubstreamBeyondTheLastIsRefusedWithoutATrace) {
  const auto plugin = make(GetParam(), 3);
  auto& view = substreams(*plugin);
  view.setSubstream(GetParam().numSubstreams - 1);
  EXPECT_EQ(view.getSubstream(), GetParam().numSubstreams - 1);
  view.advance(17);
  const State before = read(GetParam(), *plugin);
  for (const std::uint64_t index : {GetParam().numSubstreams, std::uint64_t{1} << 63, kMax}) {
    EXPECT_EQ(identifierOf([&] { view.setSubstream(index); }),
              identifier("SubstreamsIndexOutOfRange"));
  }
  EXPECT_EQ(view.getSubstream(), GetParam().numSubstreams - 1);
  EXPECT_EQ(read(GetParam(), *plugin), before);
}

TEST_P(SubstreamPlugin, StateReadAndWrittenBackRepeatsTheDraws) {
  for (const std::uint32_t seed : {0u, 1u, 0xffffffffu}) {
    for (const std::size_t drawn : {0, 1, 2, 3, 70}) {
      const auto plugin = make(GetParam(), seed, 2);
      std::vector<double> values(100);
      plugin->randu(values.data(), drawn);
      const State state = read(GetParam(), *plugin);
      const auto other = make(GetParam(), 77);
      write(GetParam(), *other, state);
      EXPECT_EQ(read(GetParam(), *other), state);
      std::vector<double> again(100);
      plugin->randu(values.data(), 100);
      other->randu(again.data(), 100);
      EXPECT_EQ(again, values);
    }
  }
}

TEST_P(SubstreamPlugin, MakesNormalsByInversionIfAny) {
  const auto plugin = make(GetParam(), 0);
  auto* const normal = dynamic_cast<IPluginRNGRandn*>(plugin.get());
  ASSERT_EQ(normal != nullptr, GetParam().normals);
  if (!normal) return;
  EXPECT_STREQ(normal->getDefaultRandnAlg(), "Inversion");
  EXPECT_TRUE(normal->setRandnAlg("INVERSION"));
  for (char const* name : {"polar", "ziggurat", "", "inversio", "inversion "}) {
    EXPECT_FALSE(normal->setRandnAlg(name)) << name;
  }
  EXPECT_FALSE(normal->setRandnAlg(nullptr));
}

// Large fills against the same numbers fetched in requests that stay serial.
class LargeFill : public testing::TestWithParam<Generator> {
 protected:
  // `draw(plugin, out, n)` fills out[0, n) from a plug-in.
  template <class Draw>
  static void expectSerialNumbers(Draw draw, bool full) {
    for (const std::size_t n : {0, 1, 1023, 1024, 1025, 8192, 8193, 131072, 131073, 1000007}) {
      const auto serial = make(GetParam(), 6, 1);
      serial->setFullPrecision(full);
      std::vector<double> head(3);
      serial->randu(head.data(), head.size());  // to an odd position inside a block
      const State start = read(GetParam(), *serial);
      std::vector<double> expected(n);
      for (std::size_t at = 0; at < n; at += GetParam().serialLimit) {
        draw(*serial, expected.data() + at, std::min(GetParam().serialLimit, n - at));
      }
      for (const std::size_t threads : {1, 2, 3, 8}) {
        tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
        const auto large = make(GetParam(), 6, 1);
        large->setFullPrecision(full);
        write(GetParam(), *large, start);
        std::vector<double> values(n);
        draw(*large, values.data(), n);
        ASSERT_TRUE(values == expected) << n << " on " << threads;
        ASSERT_EQ(read(GetParam(), *large), read(GetParam(), *serial)) << n << " on " << threads;
      }
    }
  }
};

TEST_P(LargeFill, UniformsAreTheSerialOnes) {
  for (const bool full : {true, false}) {
    expectSerialNumbers(
        [](IPluginRNG& plugin, double* out, std::size_t n) { plugin.randu(out, n); }, full);
  }
}

TEST_P(LargeFill, NormalsAreTheSerialOnes) {
  if (!GetParam().normals) GTEST_SKIP() << "no native normals";
  expectSerialNumbers([](IPluginRNG& plugin, double* out,
                         std::size_t n) { dynamic_cast<IPluginRNGRandn&>(plugin).randn(out, n); },
                      true);
}

TEST_P(LargeFill, KeepsTheSubstream) {
  const auto plugin = make(GetParam(), 6, 1);
  substreams(*plugin).setSubstream(9);
  std::vector<double> values(200000);
  plugin->randu(values.data(), values.size());
  EXPECT_EQ(substreams(*plugin).getSubstream(), 9u);
}

const auto kGenerators = testing::Values(kMlfg, kMrg, kPhilox, kThreefry);
INSTANTIATE_TEST_SUITE_P(Generators, SubstreamPlugin, kGenerators,
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(Generators, LargeFill, kGenerators, testing::PrintToStringParamName());

// One word of a good state changed: refused, or what is read back.
struct ChangedWord {
  Generator generator;
  std::vector<std::size_t> words;
  std::uint64_t offered;
  std::variant<std::string, std::uint64_t> result;  // "refused", or the word loaded
};

std::ostream& operator<<(std::ostream& out, ChangedWord const& c) {
  return out << c.generator.name << " word " << c.words.front() << " = " << c.offered;
}

class OfferedWords : public testing::TestWithParam<ChangedWord> {};

TEST_P(OfferedWords, IsLoadedAsToldOrRefusedWithoutATrace) {
  Generator const& generator = GetParam().generator;
  auto const& words = GetParam().words;
  const auto plugin = make(generator, 8);
  substreams(*plugin).advance(1);
  const State good = read(generator, *plugin);
  State changed = good;
  for (const std::size_t word : words) changed.at(word) = GetParam().offered;
  const std::string error = identifierOf([&] { write(generator, *plugin, changed); });
  if (auto const* loaded = std::get_if<std::uint64_t>(&GetParam().result)) {
    EXPECT_EQ(error, "no error");
    for (const std::size_t word : words) changed.at(word) = *loaded;
    EXPECT_EQ(read(generator, *plugin), changed);
  } else {
    EXPECT_EQ(error, std::string("TALVOR:RandStream:") + generator.name + ":InvalidState");
    EXPECT_EQ(read(generator, *plugin), good);
  }
}

const std::string kRefused = "refused";

std::vector<ChangedWord> mrgStates() {
  std::vector<ChangedWord> states;
  for (std::size_t i = 0; i < 12; ++i) {
    const std::uint64_t modulus = i % 6 < 3 ? 4294967087u : 4294944443u;
    states.push_back({kMrg, {i}, modulus, kRefused});
    states.push_back({kMrg, {i}, 0xffffffff, kRefused});
    states.push_back({kMrg, {i}, modulus - 1, modulus - 1});
    states.push_back({kMrg, {i}, 0, std::uint64_t{0}});
    if (i % 3 == 0) states.push_back({kMrg, {i, i + 1, i + 2}, 0, kRefused});
  }
  return states;
}

std::vector<ChangedWord> mlfgStates() {
  std::vector<ChangedWord> states;
  for (std::size_t i = 0; i < 128; ++i) {
    states.push_back({kMlfg, {i}, std::uint64_t{1} << 63, kRefused});
    const bool fixed = i % 64 == 63;
    states.push_back({kMlfg, {i}, kMax, fixed ? std::uint64_t{1} : kMax});
  }
  states.push_back({kMlfg, {128}, 12, std::uint64_t{0}});
  states.push_back({kMlfg, {129}, 62, std::uint64_t{62}});
  states.push_back({kMlfg, {129}, 63, kRefused});
  states.push_back({kMlfg, {129}, kMax, kRefused});
  return states;
}

std::vector<std::size_t> firstWords(std::size_t n) {
  std::vector<std::size_t> words(n);
  for (std::size_t i = 0; i < n; ++i) words[i] = i;
  return words;
}

std::vector<ChangedWord> counterStates() {
  return {{kPhilox, firstWords(7), 0, kRefused},
          {kPhilox, firstWords(6), 0, std::uint64_t{0}},  // the position is 1
          {kPhilox, {6}, 0xfffffffe, std::uint64_t{0}},
          {kPhilox, {6}, 0xffffffff, std::uint64_t{1}},
          {kThreefry, firstWords(17), 0, kRefused},
          {kThreefry, firstWords(16), 0, std::uint64_t{0}},
          {kThreefry, {16}, 4, std::uint64_t{0}},
          {kThreefry, {16}, 0xffffffff, std::uint64_t{3}}};
}

INSTANTIATE_TEST_SUITE_P(Mrg32k3a, OfferedWords, testing::ValuesIn(mrgStates()));
INSTANTIATE_TEST_SUITE_P(Mlfg6331, OfferedWords, testing::ValuesIn(mlfgStates()));
INSTANTIATE_TEST_SUITE_P(CounterBased, OfferedWords, testing::ValuesIn(counterStates()));

// The order of halves and words in a saved state.
TEST(ThreefryState, HoldsHighHalvesFirst) {
  const auto plugin = make(kThreefry, 0x12345678, 0xA00000005);
  substreams(*plugin).setSubstream(5);
  substreams(*plugin).advance(6);
  EXPECT_EQ(read(kThreefry, *plugin), (State{0x40000000, 1, 0, 1, 0, 0, 0, 0,  //
                                             0, 0x12345678, 0xA, 5, 0, 1, 0, 0, 2}));
}

TEST(PhiloxState, HoldsLowWordsFirst) {
  const auto plugin = make(kPhilox, 0, 0xA00000005);
  substreams(*plugin).setSubstream(5);
  substreams(*plugin).advance(7);
  EXPECT_EQ(read(kPhilox, *plugin), (State{3, 0x80000000, 2, 0, 6, 0xA, 1}));
}

}  // namespace
