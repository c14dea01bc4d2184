#include "tfl_rng/shr3cong.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "tests/support/known_answers.h"
#include "tfl_rng/ziggurat128.h"

namespace {

using tfl_rng::shr3cong;
using tfl_rng::Ziggurat128;

std::vector<std::uint64_t> answers(std::string const& title) {
  return known_answers::block("shr3cong.txt", title).words(10);
}

class ShiftRegister : public testing::TestWithParam<std::uint32_t> {};

TEST_P(ShiftRegister, StepsAsPublished) {
  std::uint32_t word = GetParam();
  for (const auto expected : answers("shr3 13,17,5 from " + std::to_string(word) + " ")) {
    word = tfl_rng::shr3cong_kernel::shiftRegisterStep(word);
    ASSERT_EQ(word, expected);
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ShiftRegister,
                         testing::Values(34221u, 521288629u, 1u, 362436069u, 2463534242u,
                                         4294967295u));

class Congruential : public testing::TestWithParam<std::uint32_t> {};

TEST_P(Congruential, StepsAsPublished) {
  shr3cong core(1, false);
  core.setState({GetParam(), 0});
  for (const auto expected :
       answers("cong 69069,1234567 from " + std::to_string(GetParam()) + " ")) {
    double u;
    core.randu(&u, 1);
    ASSERT_EQ(core.state().congruential, expected);
    ASSERT_EQ(core.state().shiftRegister, 0u);
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, Congruential, testing::Values(12345u, 362436069u, 0u, 1u));

TEST(Shr3Cong, SeedZeroAndTheDefaultAreTheSame) {
  for (const std::uint32_t seed : {0u, 521288629u}) {
    const shr3cong core(seed, true);
    EXPECT_EQ(core.state().congruential, 362436069u);
    EXPECT_EQ(core.state().shiftRegister, 521288629u);
  }
  EXPECT_EQ(shr3cong(1, true).state().shiftRegister, 1u);
}

TEST(Shr3Cong, ReducedPrecisionIsOneSum) {
  auto const sums = answers("sum shr3 13,17,5 + cong");
  shr3cong core(0, false);
  std::vector<double> u(sums.size());
  core.randu(u.data(), u.size());
  for (std::size_t i = 0; i < u.size(); ++i) {
    EXPECT_EQ(u[i], (static_cast<double>(sums[i]) + 0.5) / 4294967296) << i;
  }
}

TEST(Shr3Cong, FullPrecisionIsTwoSumsHighFirst) {
  auto const sums = answers("sum shr3 13,17,5 + cong");
  shr3cong core(0, true);
  std::vector<double> u(sums.size() / 2);
  core.randu(u.data(), u.size());
  for (std::size_t i = 0; i < u.size(); ++i) {
    const std::uint64_t top52 = (sums[2 * i] << 20) + (sums[2 * i + 1] >> 12);
    EXPECT_EQ(u[i], (static_cast<double>(top52) + 0.5) / 4503599627370496) << i;
  }
}

TEST(Ziggurat128, LayersHaveOneArea) {
  auto const& t = Ziggurat128::tables();
  const double scale = std::ldexp(1, 31);
  const double f127 = std::exp(-0.5 * Ziggurat128::kTailStart * Ziggurat128::kTailStart);
  const double tailArea =
      std::sqrt(std::acos(0.0)) * std::erfc(Ziggurat128::kTailStart / std::sqrt(2));
  EXPECT_NEAR(Ziggurat128::kTailStart * f127 + tailArea, Ziggurat128::kArea, 1e-12);
  EXPECT_NEAR(t.width[0] * scale * f127, Ziggurat128::kArea, 1e-15);
  EXPECT_EQ(t.height[0], 1);
  for (std::size_t i = 1; i < 128; ++i) {
    const double x = t.width[i] * scale;
    EXPECT_NEAR(t.height[i], std::exp(-0.5 * x * x), 1e-15) << i;
    // The constants are given to 13 digits; the top layer collects their error.
    EXPECT_NEAR(x * (t.height[i - 1] - t.height[i]), Ziggurat128::kArea, i == 1 ? 1e-9 : 1e-15)
        << i;
    const double inner = i == 1 ? 0 : t.width[i - 1] * scale;
    EXPECT_NEAR(t.inside[i], inner / x * scale, 1) << i;
  }
}

TEST(Shr3Cong, MostNormalsAreOneSumTimesItsLayersWidth) {
  auto const sums = answers("sum shr3 13,17,5 + cong");
  auto const& t = Ziggurat128::tables();
  shr3cong core(0, true);
  for (const std::uint64_t sum : sums) {
    const auto layer = sum % 128;
    const auto h = static_cast<double>(static_cast<std::int32_t>(sum));
    if (std::fabs(h) >= t.inside[layer]) {  // a slow case: stop comparing here
      EXPECT_GT(&sum - sums.data(), 10);
      return;
    }
    double x;
    core.randn(&x, 1);
    ASSERT_EQ(x, h * t.width[layer]);
  }
}

TEST(Shr3Cong, NormalsComeToAnEndWithoutAShiftRegister) {
  shr3cong core(1, true);
  core.setState({0, 0});
  std::vector<double> x(100'000);
  core.randn(x.data(), x.size());
  EXPECT_TRUE(std::ranges::all_of(x, [](double v) { return std::isfinite(v); }));
}

}  // namespace
