// pinnedExp and pinnedLog stay within their error bound and give the same bits everywhere.

#include "tfl_rng/elementary.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/every_target.h"

namespace {

// The bound holds against exact values; an extended double adds 2^-11 of its own.
constexpr double kBound = 0.55;
static_assert(std::numeric_limits<long double>::digits >= 64, "needs an extended long double");

double errorInUlp(double value, long double exact) {
  const double ulp = std::ldexp(1.0, std::ilogb(static_cast<double>(exact)) - 52);
  return static_cast<double>(std::fabs(value - exact) / ulp);
}

struct Interval {
  double low, high;
};

constexpr int kArguments = 200000;

class LogOn : public testing::TestWithParam<Interval> {};

TEST_P(LogOn, ErrorIsWithinTheBound) {
  std::mt19937_64 bits(1);
  std::uniform_real_distribution<double> between(GetParam().low, GetParam().high);
  for (int i = 0; i < kArguments; ++i) {
    const double x = between(bits);
    ASSERT_LT(errorInUlp(tfl_rng::pinnedLog(x), std::log(static_cast<long double>(x))), kBound)
        << std::hexfloat << x;
  }
}

INSTANTIATE_TEST_SUITE_P(Elementary, LogOn,
                         testing::Values(Interval{0x1p-53, 1}, Interval{0.5, 2},
                                         Interval{0.98, 1.04}, Interval{1, 1 + 0x1p-30},
                                         Interval{1 - 0x1p-20, 1}, Interval{1e300, 1e308}));

TEST(Elementary, LogOfEveryMagnitude) {
  std::mt19937_64 bits(2);
  for (int i = 0; i < kArguments; ++i) {
    const double x = std::bit_cast<double>(bits() >> 1);
    if (!std::isnormal(x)) continue;
    ASSERT_LT(errorInUlp(tfl_rng::pinnedLog(x), std::log(static_cast<long double>(x))), kBound)
        << std::hexfloat << x;
  }
  EXPECT_EQ(tfl_rng::pinnedLog(1), 0);
  EXPECT_EQ(tfl_rng::pinnedLog(1 - 0x1p-53), -0x1p-53);
}

class ExpOn : public testing::TestWithParam<Interval> {};

TEST_P(ExpOn, ErrorIsWithinTheBound) {
  std::mt19937_64 bits(3);
  std::uniform_real_distribution<double> between(GetParam().low, GetParam().high);
  for (int i = 0; i < kArguments; ++i) {
    const double x = between(bits);
    ASSERT_LT(errorInUlp(tfl_rng::pinnedExp(x), std::exp(static_cast<long double>(x))), kBound)
        << std::hexfloat << x;
  }
}

INSTANTIATE_TEST_SUITE_P(Elementary, ExpOn,
                         testing::Values(Interval{-708, 708}, Interval{-8, 0},
                                         Interval{-0.02, 0.02}, Interval{-708, -700},
                                         Interval{700, 708}));

TEST(Elementary, VectorLogEqualsTheScalarForm) {
  std::mt19937_64 bits(4);
  std::uniform_real_distribution<double> nearOne(0.6, 1.5);
  std::vector<double> arguments = {1, 1 - 0x1p-53, 1 + 0x1p-52, 0x1p-1022, 0x1.fffffffffffffp+1023};
  while (arguments.size() < 50003) {
    const double any = std::bit_cast<double>(bits() >> 1);
    if (std::isnormal(any)) arguments.push_back(any);
    arguments.push_back(nearOne(bits));
  }
  std::vector<double> expected;
  for (double x : arguments) expected.push_back(tfl_rng::pinnedLog(x));
  every_target::run([&] {
    std::vector<double> values = arguments;
    tfl_rng::pinnedLogInPlace(values.data(), values.size());
    EXPECT_EQ(values, expected);
  });
}

TEST(Elementary, ExpOfZeroIsOne) { EXPECT_EQ(tfl_rng::pinnedExp(0), 1); }

}  // namespace
