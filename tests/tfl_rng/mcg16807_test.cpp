#include "tfl_rng/mcg16807.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "tests/support/known_answers.h"
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

TEST(Mcg16807, ReducedPrecisionIsOneScaledStep) {
  mcg16807 core(1, false);
  std::vector<double> u(100);
  core.randu(u.data(), u.size());
  auto const words = rows();
  for (std::size_t i = 0; i < u.size(); ++i) {
    EXPECT_EQ(u[i], std::stod(words[i][1]) * 4.656612875245797e-10) << i;
  }
  EXPECT_EQ(core.word(), 892053144u);
}

TEST(Mcg16807, FullPrecisionJoinsTwentySixBitsOfTwoSteps) {
  mcg16807 core(1, true);
  std::vector<double> u(50);
  core.randu(u.data(), u.size());
  auto const words = rows();
  for (std::size_t i = 0; i < u.size(); ++i) {
    const auto high = static_cast<double>((std::stoll(words[2 * i][1]) - 1) / 32);
    const auto low = static_cast<double>((std::stoll(words[2 * i + 1][1]) - 1) / 32);
    EXPECT_EQ(u[i], (high * 67108864 + low + 0.5) / 4503599627370496) << i;
  }
  EXPECT_EQ(core.word(), 892053144u);
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
  auto const words = rows();
  std::vector<long double> expected;
  std::size_t used = 0;
  for (std::size_t i = 0; i + 1 < 100; i += 2) {
    const long double x = 2 * std::stold(words[i][1]) / 2147483647 - 1;
    const long double y = 2 * std::stold(words[i + 1][1]) / 2147483647 - 1;
    const long double s = x * x + y * y;
    if (s > 1) continue;
    expected.push_back(x * std::sqrt(-2 * std::log(s) / s));
    expected.push_back(y * std::sqrt(-2 * std::log(s) / s));
    used = i + 2;
  }
  mcg16807 core(1, true);
  std::vector<double> normals(expected.size());
  core.randn(normals.data(), normals.size());
  for (std::size_t i = 0; i < normals.size(); ++i) {
    EXPECT_NEAR(normals[i], static_cast<double>(expected[i]), 1e-14) << i;
  }
  EXPECT_EQ(core.word(), std::stoul(words[used - 1][1]));
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
