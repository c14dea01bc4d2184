#include "statistics/p_values.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace {

using namespace statistics;

// Printed tables of critical values.
TEST(PValues, AgreeWithPublishedTables) {
  EXPECT_NEAR(chiSquareTail(3.841459, 1), 0.05, 1e-7);
  EXPECT_NEAR(chiSquareTail(18.307038, 10), 0.05, 1e-7);
  EXPECT_NEAR(chiSquareTail(135.806723, 100), 0.01, 1e-7);
  EXPECT_EQ(chiSquareTail(0, 4095), 1);
  EXPECT_NEAR(normalTail(1.959964), 0.025, 1e-7);
  EXPECT_NEAR(normalTail(-1.281552), 0.9, 1e-6);
  constexpr std::size_t kMany = 1'000'000'000'000;
  for (auto const& [x, tail] : {std::pair(0.5, 0.963945),
                                {0.8275736, 0.5},
                                {1.35810, 0.05},
                                {1.62762, 0.01},
                                {1.94947, 0.001}})
    EXPECT_NEAR(kolmogorovTail(x * 1e-6, kMany), tail, 3e-6) << x;
  // Exact critical values of small samples.
  EXPECT_NEAR(kolmogorovTail(0.29408, 20), 0.05, 1e-3);
  EXPECT_NEAR(kolmogorovTail(0.22604, 50), 0.01, 1e-3);
}

TEST(PValues, OfCountsCountHalfOfTheCountItself) {
  double const none = std::exp(-2.0);
  EXPECT_NEAR(poissonTail(0, 2), 1 - none / 2, 1e-15);
  EXPECT_NEAR(poissonTail(1, 2), 1 - none - none, 1e-15);
  EXPECT_EQ(poissonTail(1e6, 2), 0);
}

TEST(ChiSquareFit, PoolsCellsThatExpectTooLittle) {
  // 4 + 6, then 12 + 3: one degree of freedom.
  double const statistic = 9.0 / 10 + 9.0 / 15;
  EXPECT_DOUBLE_EQ(
      chiSquareFit(std::array<std::uint64_t, 4>{3, 4, 16, 2}, std::array<double, 4>{4, 6, 12, 3}),
      chiSquareTail(statistic, 1));
  EXPECT_EQ(chiSquareFit(std::array<std::uint64_t, 2>{9, 0}, std::array<double, 2>{4, 5}), 0.5);
}

TEST(FamilyWise, JudgesBothEnds) {
  EXPECT_NEAR(familyWise(std::array{0.3, 1e-9, 0.6}), 6e-9, 1e-20);
  EXPECT_NEAR(familyWise(std::array{0.3, 1 - 1e-9}), 4e-9, 1e-15);
  EXPECT_EQ(familyWise(std::array{0.5, 0.4}), 1);
}

}  // namespace
