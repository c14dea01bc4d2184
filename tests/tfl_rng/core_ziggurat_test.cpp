// The twisters' ziggurat: its tables; and the distribution of the normals of all cores that have a
// method of their own.

#include "tfl_rng/core_ziggurat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

#include "statistics/normal_tests.h"
#include "statistics/p_values.h"
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

template <class Core>
class NativeNormals : public testing::Test {};

using WithMethodsOfTheirOwn = testing::Types<mt19937ar, dsfmt19937, shr3cong, mcg16807>;
TYPED_TEST_SUITE(NativeNormals, WithMethodsOfTheirOwn);

// A ziggurat draws its tail by another method than the rest: beside moments, histogram and weights
// of the tails, the distribution within them.
TYPED_TEST(NativeNormals, AreNormal) {
  std::vector<double> values(4'000'000);
  TypeParam(20240607, true).randn(values.data(), values.size());
  statistics::NormalTally tally;
  tally.add(values);
  std::vector<double> ps;
  for (auto const& row : tally.pValues()) ps.push_back(row.p);
  EXPECT_GT(statistics::familyWise(ps), 1e-3);

  const double weight = std::erfc(ziggurat::kTailStart * std::sqrt(0.5));
  std::vector<double> tail;
  for (double value : values)
    if (std::fabs(value) > ziggurat::kTailStart)
      tail.push_back(std::erfc(std::fabs(value) * std::sqrt(0.5)) / weight);
  EXPECT_GT(statistics::uniformFit(tail), 1e-3);
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
