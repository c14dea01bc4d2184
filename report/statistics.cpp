#include "report/statistics.h"

#include <algorithm>
#include <boost/math/distributions/beta.hpp>
#include <boost/math/distributions/binomial.hpp>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/normal.hpp>
#include <cmath>
#include <numeric>

namespace report {

namespace {

template <class Distribution>
double twoSided(Distribution const& distribution, double value) {
  double const below = boost::math::cdf(distribution, value);
  double const above = boost::math::cdf(boost::math::complement(distribution, value));
  return std::min(1.0, 2 * std::min(below, above));
}

}  // namespace

double chiSquareP(double statistic, double degreesOfFreedom) {
  return twoSided(boost::math::chi_squared(degreesOfFreedom), statistic);
}

double chiSquareOfEqualCounts(std::span<std::uint64_t const> counts, double expected) {
  double sum = 0;
  for (std::uint64_t const count : counts) {
    double const off = static_cast<double>(count) - expected;
    sum += off * off / expected;
  }
  return sum;
}

double normalP(double z) { return std::erfc(std::fabs(z) / std::sqrt(2.0)); }

double normalBelow(double z) { return 0.5 * std::erfc(-z / std::sqrt(2.0)); }

double normalQuantile(double p) { return boost::math::quantile(boost::math::normal(), p); }

double kolmogorovP(double lambda) {
  if (lambda < 0.3) return 1;  // less than 1e-5 away, and the series needs many terms
  double sum = 0;
  for (int k = 1; k <= 20; ++k) {
    sum += (k % 2 == 1 ? 2 : -2) * std::exp(-2.0 * k * k * lambda * lambda);
  }
  return std::clamp(sum, 0.0, 1.0);
}

double kolmogorovLimit(double p) {
  double low = 0.3;
  double high = 20;
  for (int i = 0; i < 60; ++i) {
    double const middle = (low + high) / 2;
    (kolmogorovP(middle) > p ? low : high) = middle;
  }
  return high;
}

double binomialP(std::uint64_t count, std::uint64_t n, double chance) {
  boost::math::binomial const law(static_cast<double>(n), chance);
  double const atMost = boost::math::cdf(law, static_cast<double>(count));
  double const atLeast =
      count == 0 ? 1
                 : boost::math::cdf(boost::math::complement(law, static_cast<double>(count) - 1));
  return std::min(1.0, 2 * std::min(atMost, atLeast));
}

double orderStatisticP(double value, std::uint64_t k, std::uint64_t n) {
  return twoSided(boost::math::beta_distribution<>(static_cast<double>(k),
                                                   static_cast<double>(n + 1 - k)),
                  std::clamp(value, 0.0, 1.0));
}

double orderStatisticQuantile(double p, std::uint64_t k, std::uint64_t n) {
  return boost::math::quantile(
      boost::math::beta_distribution<>(static_cast<double>(k), static_cast<double>(n + 1 - k)), p);
}

double smallestOf(double p, double count) { return -std::expm1(count * std::log1p(-p)); }

double largestNormalLimit(double p, double count) {
  double const each = -std::expm1(std::log1p(-p) / count);
  return -normalQuantile(each / 2);
}

std::vector<double> holm(std::span<double const> p) {
  std::vector<std::size_t> order(p.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return p[a] < p[b]; });
  std::vector<double> adjusted(p.size());
  double largest = 0;
  for (std::size_t rank = 0; rank < order.size(); ++rank) {
    largest = std::max(largest, static_cast<double>(p.size() - rank) * p[order[rank]]);
    adjusted[order[rank]] = std::min(1.0, largest);
  }
  return adjusted;
}

}  // namespace report
