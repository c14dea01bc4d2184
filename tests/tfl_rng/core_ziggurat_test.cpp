// The twisters' ziggurat: its tables; and the distribution of the normals of all cores that have a
// method of their own.

#include "tfl_rng/core_ziggurat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

#include "tests/support/every_target.h"
#include "tests/support/known_answers.h"
#include "tfl_rng/dsfmt19937.h"
#include "tfl_rng/mcg16807.h"
#include "tfl_rng/mt19937ar.h"
#include "tfl_rng/shr3cong.h"

namespace {

using namespace tfl_rng;

// Columns 4 and 5 of the file hold the exact construction to 25 digits.
TEST(CoreZiggurat, TablesAreTheExactConstructionRounded) {
  const auto rows = known_answers::block("ziggurat256.txt", "").rows;
  ASSERT_EQ(rows.size(), 257u);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(ziggurat::kX[i], std::stod(rows[i][3])) << i;
    EXPECT_EQ(ziggurat::kF[i], std::stod(rows[i][4])) << i;
  }
  EXPECT_EQ(ziggurat::kTailStart, ziggurat::kX[255]);
  EXPECT_NEAR(ziggurat::kInverseTailStart * ziggurat::kTailStart, 1, 0x1p-52);
}

double distribution(double x) { return 0.5 * std::erfc(-x * std::sqrt(0.5)); }

template <class Core>
class NativeNormals : public testing::Test {
 protected:
  static constexpr std::size_t kCount = 4'000'000;

  NativeNormals() : values(kCount) { Core(20240607, true).randn(values.data(), kCount); }

  std::vector<double> values;
};

using WithMethodsOfTheirOwn = testing::Types<mt19937ar, dsfmt19937, shr3cong, mcg16807>;
TYPED_TEST_SUITE(NativeNormals, WithMethodsOfTheirOwn);

// Bins of equal probability; chi-square with many degrees of freedom is close to normal.
TYPED_TEST(NativeNormals, AreSpreadLikeTheNormalDistribution) {
  constexpr int kBins = 2000;
  std::vector<double> counts(kBins);
  for (double value : this->values)
    ++counts[std::min(kBins - 1, static_cast<int>(distribution(value) * kBins))];
  const double expected = static_cast<double>(this->kCount) / kBins;
  double chiSquare = 0;
  for (double count : counts) chiSquare += (count - expected) * (count - expected) / expected;
  EXPECT_NEAR(chiSquare, kBins - 1, 4 * std::sqrt(2.0 * (kBins - 1)));
}

TYPED_TEST(NativeNormals, HaveTheRightMoments) {
  double sums[5] = {};
  for (double value : this->values) {
    double power = 1;
    for (double& sum : sums) sum += power, power *= value;
  }
  const double n = sums[0];
  const double deviations = 4 / std::sqrt(n);
  EXPECT_NEAR(sums[1] / n, 0, deviations);
  EXPECT_NEAR(sums[2] / n, 1, deviations * std::sqrt(2.0));
  EXPECT_NEAR(sums[3] / n, 0, deviations * std::sqrt(15.0));
  EXPECT_NEAR(sums[4] / n, 3, deviations * std::sqrt(96.0));
}

// A ziggurat draws its tail by another method than the rest: its weight on both sides, and within
// it the conditional distribution (Kolmogorov-Smirnov).
TYPED_TEST(NativeNormals, HaveTheRightTail) {
  const double start = ziggurat::kTailStart;
  const double weight = 2 * distribution(-start);
  std::vector<double> tail;
  double left = 0;
  for (double value : this->values) {
    if (std::fabs(value) <= start) continue;
    tail.push_back(1 - 2 * distribution(-std::fabs(value)) / weight);
    left += value < 0;
  }
  const double expected = weight * static_cast<double>(this->kCount);
  const double count = static_cast<double>(tail.size());
  EXPECT_NEAR(count, expected, 4 * std::sqrt(expected));
  EXPECT_NEAR(left, count / 2, 2 * std::sqrt(count));
  std::sort(tail.begin(), tail.end());
  double distance = 0;
  for (std::size_t i = 0; i < tail.size(); ++i)
    distance = std::max({distance, tail[i] - static_cast<double>(i) / count,
                         static_cast<double>(i + 1) / count - tail[i]});
  EXPECT_LT(distance * std::sqrt(count), 1.95);  // one in a thousand
}

// The vector form of the fast acceptance equals the scalar one; with candidates of every layer the
// runs end at every lane.
template <class Layout>
class AcceptedRun : public testing::Test {};

using Layouts = testing::Types<ziggurat::Bits64, ziggurat::Bits52>;
TYPED_TEST_SUITE(AcceptedRun, Layouts);

TYPED_TEST(AcceptedRun, KernelEqualsTheScalarForm) {
  std::mt19937_64 bits(6);
  std::vector<std::uint64_t> values(20000);
  for (auto& value : values) value = bits();
  every_target::run([&] {
    std::vector<double> expected(values.size()), out(values.size() + 1);
    for (std::size_t at = 0; at < values.size(); ++at) {
      const std::size_t n = std::min<std::size_t>(values.size() - at, at % 23);
      out[n] = -7;
      const auto length =
          ziggurat::reference::acceptedRun(TypeParam{}, values.data() + at, expected.data(), n);
      ASSERT_EQ(ziggurat::acceptedRun(TypeParam{}, values.data() + at, out.data(), n), length);
      ASSERT_TRUE(std::equal(out.data(), out.data() + length, expected.data())) << at;
      ASSERT_EQ(out[n], -7);
    }
  });
}

// Candidates that are rejected for ever end in an error instead of a hang: one at the outer end of
// a wedge, and a tail whose uniforms are all as small as can be.
struct Stuck {
  using Layout = ziggurat::Bits64;
  std::uint64_t first, others;
  std::uint64_t value() { return std::exchange(first, others); }
};

TEST(CoreZiggurat, EndlessRejectionEnds) {
  const std::uint64_t outermost = ~std::uint64_t{0xfff};
  Stuck wedge{outermost | 100, outermost | 100};
  EXPECT_THROW(ziggurat::normal(wedge), RejectionLimit);
  Stuck tail{outermost | ziggurat::kBaseLayer, 0};
  EXPECT_THROW(ziggurat::normal(tail), RejectionLimit);
}

}  // namespace
