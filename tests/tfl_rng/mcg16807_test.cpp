#include "tfl_rng/mcg16807.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "tests/support/cores.h"
#include "tests/support/minimal_standard.h"
#include "tfl_rng/minimal_standard.h"

namespace {

using tfl_rng::mcg16807;
using tfl_rng::minimalStandardStep;

std::vector<std::vector<std::string>> rows() {
  return known_answers::read("minstd16807.txt").front().rows;
}

TEST(MinimalStandard, StepsThroughThePublishedSequence) {
  std::uint32_t word = 1;
  std::uint32_t n = 0;
  for (auto const& row : rows()) {
    if (row.size() != 2) continue;
    for (const auto target = std::stoul(row[0]); n < target; ++n) word = minimalStandardStep(word);
    ASSERT_EQ(word, std::stoul(row[1])) << "step " << n;
  }
  EXPECT_EQ(n, 10000u);
  EXPECT_EQ(word, 1043618065u);
}

TEST(MinimalStandard, StepsAlsoNearTheModulus) {
  int checked = 0;
  for (auto const& row : rows()) {
    if (row.front() != "next") continue;
    EXPECT_EQ(minimalStandardStep(static_cast<std::uint32_t>(std::stoul(row[1]))),
              std::stoul(row[2]));
    ++checked;
  }
  EXPECT_EQ(checked, 4);
}

TEST(MinimalStandard, AnyWordStandsForItsResidue) {
  for (const std::uint32_t word : {0u, 0x7fffffffu, 0x80000000u, 0x80000001u, 0xfffffffeu,
                                   0xffffffffu, 127772u, 127773u, 127774u}) {
    EXPECT_EQ(minimalStandardStep(word), std::uint64_t{16807} * word % 2147483647) << word;
  }
}

TEST(Mcg16807, SeedIsTakenModuloTheModulus) {
  const std::map<std::uint32_t, std::uint32_t> wordOfSeed = {
      {1, 1},          {0, 1144108930},          {0x7fffffff, 1144108930},
      {0x80000000, 1}, {0xfffffffe, 1144108930}, {0xffffffff, 1},
      {5489, 5489},    {0x7ffffffe, 0x7ffffffe}};
  for (auto const& [seed, word] : wordOfSeed) EXPECT_EQ(mcg16807(seed, true).word(), word);
}

TEST(Mcg16807, ReducedPrecisionIsOneScaledStepAndFullJoinsTwentySixBitsOfTwo) {
  auto const words = known_answers::minimalStandardWords();
  mcg16807 reduced(1, false), full(1, true);
  auto const bits = [&](std::size_t i) { return std::floor((words[i] - 1) / 32); };
  for (std::size_t i = 0; i < 100; ++i)
    EXPECT_EQ(testing_support::draw(reduced, 1)[0], words[i] * 4.656612875245797e-10) << i;
  for (std::size_t i = 0; i < 100; i += 2)
    EXPECT_EQ(testing_support::draw(full, 1)[0],
              (bits(i) * 67108864 + bits(i + 1) + 0.5) / 4503599627370496)
        << i;
  EXPECT_EQ(reduced.word(), 892053144u);
  EXPECT_EQ(full.word(), 892053144u);
}

TEST(Mcg16807, ExtremeWordsGiveUniformsInsideTheInterval) {
  // The words before the smallest and the largest one, and before a largest high half.
  for (const std::uint32_t wanted : {1u, 2u, 0x7ffffffdu, 0x7ffffffeu}) {
    // 1407677000 is the inverse of the multiplier.
    const auto before = static_cast<std::uint32_t>(std::uint64_t{1407677000} * wanted % 0x7fffffff);
    ASSERT_EQ(minimalStandardStep(before), wanted);
    for (const bool full : {false, true}) {
      mcg16807 core(1, full);
      core.setWord(before);
      double u = -1;
      core.randu(&u, 1);
      EXPECT_GT(u, 0);
      EXPECT_LT(u, 1);
    }
  }
}

TEST(Mcg16807, NormalsAreThePolarTransformOfAcceptedPairs) {
  std::size_t used = 0;
  auto const pairs = known_answers::polarPairs(&used);
  mcg16807 core(1, true);
  for (auto const& [first, second] : pairs) {
    double normals[2];
    core.randn(normals, 2);
    EXPECT_NEAR(normals[0], first, 1e-14);
    EXPECT_NEAR(normals[1], second, 1e-14);
  }
  EXPECT_EQ(core.word(), known_answers::minimalStandardWords()[used - 1]);
}

TEST(Mcg16807, OddCountOfNormalsDropsTheSecondOfThePair) {
  mcg16807 whole(7, true), cut(7, true);
  double pairs[4], singles[2];
  whole.randn(pairs, 4);
  cut.randn(singles, 1);
  cut.randn(singles + 1, 1);
  EXPECT_EQ(singles[0], pairs[0]);
  EXPECT_EQ(singles[1], pairs[2]);
  EXPECT_EQ(cut.word(), whole.word());
}

}  // namespace
