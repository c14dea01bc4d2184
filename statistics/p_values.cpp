#include "statistics/p_values.h"

#include <algorithm>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/poisson.hpp>
#include <cmath>
#include <numbers>
#include <numeric>

namespace statistics {

namespace {

constexpr double kLeastExpected = 10;

double square(double x) { return x * x; }

// P(K > x) of Kolmogorov's limit distribution, by the series that converges fast at x.
double kolmogorovLimitTail(double x) {
  using std::numbers::pi;
  constexpr int kTerms = 20;
  if (x <= 0) return 1;
  double sum = 0;
  if (x < 1) {
    for (int k = 1; k <= kTerms; ++k) sum += std::exp(-square((2 * k - 1) * pi / x) / 8);
    return 1 - std::sqrt(2 * pi) / x * sum;
  }
  for (int k = kTerms; k >= 1; --k) sum += (k % 2 == 1 ? 2 : -2) * std::exp(-2 * square(k * x));
  return sum;
}

}  // namespace

double chiSquareTail(double statistic, double degreesOfFreedom) {
  if (statistic <= 0) return 1;  // the distribution's own function overflows there
  return cdf(complement(boost::math::chi_squared(degreesOfFreedom), statistic));
}

double normalTail(double z) { return cdf(complement(boost::math::normal(), z)); }

double poissonTail(double count, double mean) {
  boost::math::poisson const distribution(mean);
  return cdf(complement(distribution, count)) + pdf(distribution, count) / 2;
}

double kolmogorovTail(double distance, std::size_t n) {
  double const root = std::sqrt(static_cast<double>(n));
  return kolmogorovLimitTail((root + 0.12 + 0.11 / root) * distance);
}

double chiSquareFit(std::span<std::uint64_t const> counts, std::span<double const> expected) {
  struct Cell {
    double count = 0;
    double expected = 0;
  };
  std::vector<Cell> cells(1);
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (cells.back().expected >= kLeastExpected) cells.emplace_back();
    cells.back().count += static_cast<double>(counts[i]);
    cells.back().expected += expected[i];
  }
  if (cells.size() > 1 && cells.back().expected < kLeastExpected) {
    Cell const rest = cells.back();
    cells.pop_back();
    cells.back().count += rest.count;
    cells.back().expected += rest.expected;
  }
  if (cells.size() < 2) return 0.5;
  double statistic = 0;
  for (Cell const& cell : cells) statistic += square(cell.count - cell.expected) / cell.expected;
  return chiSquareTail(statistic, static_cast<double>(cells.size() - 1));
}

double chiSquareUniform(std::span<std::uint64_t const> counts) {
  auto const cells = static_cast<double>(counts.size());
  double const mean = std::accumulate(counts.begin(), counts.end(), 0.0) / cells;
  double statistic = 0;
  for (std::uint64_t const count : counts)
    statistic += square(static_cast<double>(count) - mean) / mean;
  return chiSquareTail(statistic, cells - 1);
}

double uniformFit(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  auto const n = static_cast<double>(values.size());
  double distance = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    auto const below = static_cast<double>(i);
    distance = std::max({distance, values[i] - below / n, (below + 1) / n - values[i]});
  }
  return kolmogorovTail(distance, values.size());
}

double familyWise(std::span<double const> pValues) {
  double smallest = 0.5;
  for (double const p : pValues) smallest = std::min({smallest, p, 1 - p});
  return std::min(1.0, 2 * smallest * static_cast<double>(pValues.size()));
}

}  // namespace statistics
