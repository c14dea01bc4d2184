// pinnedExp and pinnedLog stay within their error bound and give the same bits everywhere.

#include "tfl_rng/elementary.h"

#include <gtest/gtest.h>

#include <bit>
#include <boost/multiprecision/cpp_bin_float.hpp>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "tests/support/every_target.h"

namespace {

// 72 bits, the same on every machine; they add 2^-19 to an error.
using Wide = boost::multiprecision::number<
    boost::multiprecision::cpp_bin_float<72, boost::multiprecision::digit_base_2>>;

constexpr double kBound = 0.55;

double errorInUlp(double value, Wide const& exact) {
  const double ulp = std::ldexp(1.0, std::ilogb(static_cast<double>(exact)) - 52);
  return static_cast<double>(Wide(abs(value - exact) / ulp));
}

struct Interval {
  double low, high;
};

constexpr int kArguments = 50000;

class LogOn : public testing::TestWithParam<Interval> {};

TEST_P(LogOn, ErrorIsWithinTheBound) {
  std::mt19937_64 bits(1);
  std::uniform_real_distribution<double> between(GetParam().low, GetParam().high);
  for (int i = 0; i < kArguments; ++i) {
    const double x = between(bits);
    ASSERT_LT(errorInUlp(tfl_rng::pinnedLog(x), Wide(log(Wide(x)))), kBound) << std::hexfloat << x;
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
    ASSERT_LT(errorInUlp(tfl_rng::pinnedLog(x), Wide(log(Wide(x)))), kBound) << std::hexfloat << x;
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
    ASSERT_LT(errorInUlp(tfl_rng::pinnedExp(x), Wide(exp(Wide(x)))), kBound) << std::hexfloat << x;
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
