// The normal quantile against 25-digit values.

#include "tfl_rng/normal_quantile.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "tests/support/every_target.h"
#include "tests/support/known_answers.h"

namespace {

struct Row {
  double p, exact, plain, relativeError;
};

double number(std::string const& text) { return std::strtod(text.c_str(), nullptr); }

// The rows with a normal argument: what a uniform can be, and more.
std::vector<Row> rows() {
  std::vector<Row> result;
  const auto block = known_answers::block("as241.txt", "");
  for (auto const& row : block.rows)
    result.push_back({number(row[0]), number(row[1]), number(row[2]), number(row[3])});
  std::erase_if(result, [](Row const& row) { return row.p < DBL_MIN; });
  return result;
}

// The file's own evaluation took the logarithm of a C library; ours may round it the other way.
TEST(NormalQuantile, AgreesWithPlainDoubleArithmetic) {
  const auto all = rows();
  ASSERT_GT(all.size(), 160u);
  for (Row const& row : all) {
    const double value = tfl_rng::normalQuantile(row.p);
    if (std::fabs(row.p - 0.5) <= 0.425)
      EXPECT_EQ(value, row.plain) << row.p;
    else
      EXPECT_NEAR(value, row.plain, 4 * 0x1p-52 * std::fabs(row.plain)) << row.p;
  }
}

// The published accuracy: about one part in 10^16; the measured errors of the file's rows reach a
// few units of 2^-53.
TEST(NormalQuantile, IsCloseToTheExactQuantile) {
  for (Row const& row : rows()) {
    EXPECT_NEAR(tfl_rng::normalQuantile(row.p), row.exact,
                (row.relativeError + 4) * 0x1p-53 * std::fabs(row.exact))
        << row.p;
  }
}

TEST(NormalQuantile, IsOddWhereTheComplementIsExact) {
  for (double p : {0x1p-52, 0x1p-33, 0.0009765625, 0.0625, 0.07421875, 0.3125})
    EXPECT_EQ(tfl_rng::normalQuantile(1 - p), -tfl_rng::normalQuantile(p)) << p;
}

// Any length, and far tails among the others.
TEST(NormalQuantile, VectorFormEqualsTheScalarForm) {
  std::mt19937_64 bits(5);
  std::vector<double> all = {0x1p-53, 1 - 0x1p-53, 1e-12, 0.075, 0.925, 0.5, 1e-300};
  while (all.size() < 5000) {
    const double u = (static_cast<double>(bits() >> 12) + 0.5) * 0x1p-52;
    all.push_back(u);
    if (bits() % 64 == 0) all.push_back(u * 1e-10);
  }
  every_target::run([&] {
    for (std::size_t n : {0, 1, 2, 3, 5, 7, 8, 9, 15, 100, 255, 256, 257, 300, 4999}) {
      std::vector<double> values(all.begin(), all.begin() + n);
      std::vector<double> expected;
      for (double u : values) expected.push_back(tfl_rng::normalQuantile(u));
      values.push_back(-7);
      expected.push_back(-7);
      tfl_rng::normalQuantileInPlace(values.data(), n);
      ASSERT_EQ(values, expected) << n;
    }
  });
}

}  // namespace
