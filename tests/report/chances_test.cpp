// Chances and limits of the report, against values worked out by hand or from published tables.

#include "report/chances.h"

#include <gmock/gmock.h>

#include <cmath>

#include "report/svg.h"

namespace report {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;

TEST(Chances, HolmStepsDownAndNeverDecreases) {
  double const p[] = {0.01, 0.04, 0.03, 0.005};
  EXPECT_THAT(holm(p), ElementsAre(DoubleNear(0.03, 1e-15), DoubleNear(0.06, 1e-15),
                                   DoubleNear(0.06, 1e-15), DoubleNear(0.02, 1e-15)));
}

TEST(Chances, ChiSquareTellsTooUnevenAndTooEven) {
  // Tables of the chi-square law with 10 degrees of freedom: 2.5 % below 3.247, above 20.483.
  EXPECT_NEAR(chiSquareP(20.483, 10), 0.05, 1e-5);
  EXPECT_NEAR(chiSquareP(3.247, 10), 0.05, 1e-4);
}

TEST(Chances, CountsOfCoins) {
  EXPECT_NEAR(binomialP(0, 10, 0.5), 2.0 / 1024, 1e-15);
  EXPECT_NEAR(binomialP(9, 10, 0.5), 22.0 / 1024, 1e-15);
  EXPECT_EQ(binomialP(5, 10, 0.5), 1);
}

TEST(Chances, SmallestOfManyUniforms) {
  // The smallest of n is above x with probability (1-x)^n.
  EXPECT_NEAR(orderStatisticQuantile(0.5, 1, 10), 1 - std::pow(0.5, 0.1), 1e-12);
  EXPECT_NEAR(orderStatisticP(1 - std::pow(0.99, 0.1), 1, 10), 0.02, 1e-12);
  EXPECT_NEAR(smallestOf(0.1, 3), 1 - 0.9 * 0.9 * 0.9, 1e-15);
}

TEST(Chances, LimitsAreThoseOfTables) {
  EXPECT_NEAR(largestNormalLimit(0.05, 1), 1.959964, 1e-6);
  EXPECT_NEAR(kolmogorovLimit(0.05, 1000000), 1.3581e-3, 2e-7);
}

TEST(Numbers, AreWrittenForReading) {
  EXPECT_EQ(readable(16777216), "16,777,216");
  EXPECT_EQ(readable(-0.000214, 2), "−0.00021");
  EXPECT_EQ(readable(2.1e-9, 2), "2.1×10⁻⁹");
  EXPECT_EQ(escaped("a<b & \"c\""), "a&lt;b &amp; &quot;c&quot;");
}

}  // namespace
}  // namespace report
