// mt19937ar and dsfmt19937 against their published outputs.

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "tests/support/cores.h"
#include "tests/support/known_answers.h"

namespace {

using testing_support::draw;
using tfl_rng::dsfmt19937;
using tfl_rng::mt19937ar;

// A core that stands right after the published seeding.
template <class Core>
Core seeded(std::uint32_t seed, bool fullPrecision = true) {
  Core core(1, fullPrecision);
  core.setState(Core::seeded(seed));
  return core;
}

// A block that starts with "<name> <seed>" gives its seed, others nothing.
bool seedOf(known_answers::Block const& block, char const* name, std::uint32_t& seed) {
  char rest;
  return std::sscanf(block.title.c_str(), (std::string(name) + " %u%c").c_str(), &seed, &rest) >= 1;
}

// The words behind doubles of reduced precision, (w + 0.5) * 2^-32.
std::vector<std::uint64_t> wordsOf(std::vector<double> const& values) {
  std::vector<std::uint64_t> words;
  for (double value : values) words.push_back(static_cast<std::uint64_t>(value * 0x1p32 - 0.5));
  return words;
}

// For each block "<name> <seed>" of a file: expectBlock(block, seed); returns how many there are.
template <class ExpectBlock>
int forEachSeed(char const* file, char const* name, ExpectBlock expectBlock) {
  int blocks = 0;
  std::uint32_t seed = 0;
  for (auto const& block : known_answers::read(file)) {
    if (!seedOf(block, name, seed)) continue;
    SCOPED_TRACE(block.title);
    expectBlock(block, seed);
    ++blocks;
  }
  return blocks;
}

TEST(Mt19937ar, PublishedWords) {
  EXPECT_EQ(6, forEachSeed("mt19937_u32.txt", "init_genrand", [](auto const& block, auto seed) {
              const auto expected = block.words(16);
              auto core = seeded<mt19937ar>(seed, false);
              EXPECT_EQ(wordsOf(draw(core, expected.size())), expected);
            }));
}

TEST(Mt19937ar, PublishedWordFarOut) {
  auto core = seeded<mt19937ar>(5489, false);
  EXPECT_EQ(wordsOf(draw(core, 10000)).back(),
            known_answers::block("mt19937_u32.txt", "nth init_genrand 5489").words(16)[0]);
}

TEST(Mt19937ar, PublishedSeeding) {
  const auto expected =
      known_answers::block("mt19937_u32.txt", "state init_genrand 5489").words(16);
  const auto state = mt19937ar::seeded(5489);
  EXPECT_TRUE(std::ranges::equal(state.words, expected));
  EXPECT_EQ(state.position, mt19937ar::kWords);
}

TEST(Mt19937ar, PublishedDoubles) {
  EXPECT_EQ(
      4, forEachSeed("mt19937_res53.txt", "res53 init_genrand", [](auto const& block, auto seed) {
        const auto expected = block.doubles();
        auto core = seeded<mt19937ar>(seed);
        EXPECT_EQ(draw(core, expected.size()), expected);
      }));
}

// An odd number of words in the other precision mode first, so that one double's words lie in two
// batches.
TEST(Mt19937ar, DoubleOfTwoBatches) {
  for (const std::size_t each : {400, 1}) {
    auto core = seeded<mt19937ar>(42, false);
    std::mt19937 words(42);
    words.discard(draw(core, 623).size());
    core.setFullPrecision(true);
    for (std::size_t drawn = 0; drawn < 400; drawn += each) {
      for (double u : draw(core, each)) {
        const std::uint64_t high = words() >> 5;
        const std::uint64_t low = words() >> 6;
        ASSERT_EQ(u, static_cast<double>(high << 26 | low) * 0x1p-53) << drawn;
      }
    }
  }
}

TEST(Mt19937ar, SeedZeroIsThePublishedDefault) {
  EXPECT_EQ(mt19937ar(0, true).state(), mt19937ar::seeded(5489));
  mt19937ar core(7, true);
  core.reset(0);
  EXPECT_EQ(core.state(), mt19937ar::seeded(5489));
  core.reset(7);
  EXPECT_EQ(core.state(), mt19937ar::seeded(7));
}

TEST(Mt19937ar, DoublesStayInsideTheOpenInterval) {
  mt19937ar::State state{};  // tempering keeps 0, and this word becomes 0xffffffff
  state.words[2] = state.words[3] = 0x12dd9bb3;
  state.position = 0;
  auto core = seeded<mt19937ar>(1, false);
  core.setState(state);
  const auto reduced = draw(core, 4);
  EXPECT_EQ(reduced[0], 0x1p-33);
  ASSERT_EQ(wordsOf(reduced)[2], 0xffffffffu);
  EXPECT_EQ(reduced[2], 1 - 0x1p-33);
  core.setState(state);
  core.setFullPrecision(true);
  EXPECT_EQ(draw(core, 2), (std::vector<double>{0x1p-53, 1 - 0x1p-53}));
}

double openOpen(std::uint64_t word) { return std::bit_cast<double>(word | 1) - 1; }

TEST(Dsfmt19937, PublishedWords) {
  EXPECT_EQ(5,
            forEachSeed("dsfmt19937_words.txt", "init_gen_rand", [](auto const& block, auto seed) {
              std::vector<double> expected;
              for (std::uint64_t word : block.words(16)) expected.push_back(openOpen(word));
              for (bool full : {true, false}) {
                auto core = seeded<dsfmt19937>(seed, full);
                EXPECT_EQ(draw(core, expected.size()), expected);
              }
            }));
}

TEST(Dsfmt19937, PublishedWordFarOut) {
  for (std::uint32_t seed : {0u, 5489u}) {
    const auto block = known_answers::block("dsfmt19937_words.txt",
                                            "nth init_gen_rand " + std::to_string(seed) + " ");
    auto core = seeded<dsfmt19937>(seed);
    EXPECT_EQ(draw(core, 100000).back(), openOpen(block.words(16)[0]));
  }
}

TEST(Dsfmt19937, PublishedSeeding) {
  for (std::uint32_t seed : {0u, 5489u}) {
    const auto block = known_answers::block("dsfmt19937_words.txt",
                                            "state init_gen_rand " + std::to_string(seed) + " ");
    const dsfmt19937 core(seed, true);
    EXPECT_TRUE(std::ranges::equal(core.state().words, block.words(16)));
    EXPECT_EQ(core.state().position, dsfmt19937::kOutputs);
  }
}

// The reference output as its authors print it: under "init_gen_rand(5) generated randoms (0, 1]"
// rows of four values with 15 decimals.
TEST(Dsfmt19937, PublishedReferenceOutput) {
  int blocks = 0;
  std::string interval;
  dsfmt19937 core(1, true);
  const auto block = known_answers::block("dsfmt19937_published_extract.txt", "");
  for (auto const& row : block.rows) {
    std::uint32_t seed = 0;
    if (std::sscanf(row[0].c_str(), "init_gen_rand(%u)", &seed) == 1) {
      interval = row[3] + row[4];
      core = seeded<dsfmt19937>(seed);
      ++blocks;
    } else if (row[0] == "init_by_array") {
      break;  // a seeding that the core does not have
    } else if (blocks > 0) {
      for (auto const& field : row) {
        const double printed = std::stod(field);
        const double uniform = interval == "[1,2)"   ? printed - 1
                               : interval == "(0,1]" ? 1 - printed
                                                     : printed;
        ASSERT_NEAR(draw(core, 1)[0], uniform, 1e-15) << seed << interval;
      }
    }
  }
  EXPECT_EQ(blocks, 21);
}

TEST(Dsfmt19937, AnyStateIsKeptAndSafe) {
  std::mt19937_64 bits(1);
  for (std::uint32_t position : {0u, 381u, 382u, 383u, 765u, 0x7fffffffu, 0xffffffffu}) {
    dsfmt19937::State state;
    for (auto& word : state.words) word = bits();
    state.words[5] = ~std::uint64_t{0};
    state.words[6] = 0;
    state.position = position;
    for (auto& word : state.reserved) word = static_cast<std::uint32_t>(bits());
    dsfmt19937 core(1, true);
    core.setState(state);
    core.randu(nullptr, 0);
    EXPECT_EQ(core.state(), state);
    for (double value : draw(core, 2000)) {
      ASSERT_GT(value, 0);
      ASSERT_LT(value, 1);
    }
    EXPECT_LE(core.state().position, dsfmt19937::kOutputs);
    EXPECT_EQ(core.state().reserved, state.reserved);

    // Beyond the table a position counts modulo its length and one.
    dsfmt19937 reduced(1, true), normal(1, true), reducedNormal(1, true);
    normal.setState(state);
    state.position %= dsfmt19937::kOutputs + 1;
    reduced.setState(state);
    reducedNormal.setState(state);
    draw(reduced, 2000);
    EXPECT_EQ(core.state(), reduced.state());
    std::vector<double> normals(2000), expected(2000);
    normal.randn(normals.data(), normals.size());
    reducedNormal.randn(expected.data(), expected.size());
    for (double value : normals) ASSERT_TRUE(std::isfinite(value));
    EXPECT_EQ(normals, expected);
    EXPECT_EQ(normal.state(), reducedNormal.state());
  }
}

}  // namespace
