#include "report/chances.h"

#include <algorithm>
#include <boost/math/distributions/beta.hpp>
#include <boost/math/distributions/binomial.hpp>
#include <boost/math/distributions/normal.hpp>
#include <cmath>
#include <numeric>

#include "statistics/p_values.h"

namespace report {

namespace {

boost::math::beta_distribution<> orderStatistic(std::uint64_t k, std::uint64_t n) {
  return boost::math::beta_distribution<>(static_cast<double>(k), static_cast<double>(n + 1 - k));
}

}  // namespace

double chiSquareP(double statistic, double degreesOfFreedom) {
  double const above = statistics::chiSquareTail(statistic, degreesOfFreedom);
  return std::min(1.0, 2 * std::min(above, 1 - above));
}

double chiSquareOfEqualCounts(std::span<std::uint64_t const> counts, double expected) {
  double sum = 0;
  for (std::uint64_t const count : counts) {
    double const off = static_cast<double>(count) - expected;
    sum += off * off / expected;
  }
  return sum;
}

double normalP(double z) { return 2 * statistics::normalTail(std::fabs(z)); }

double normalBelow(double z) { return statistics::normalTail(-z); }

double normalQuantile(double p) { return boost::math::quantile(boost::math::normal(), p); }

double kolmogorovLimit(double p, std::uint64_t n) {
  double low = 0;
  double high = 1;
  for (int i = 0; i < 60; ++i) {
    double const middle = (low + high) / 2;
    (statistics::kolmogorovTail(middle, n) > p ? low : high) = middle;
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
  auto const law = orderStatistic(k, n);
  double const at = std::clamp(value, 0.0, 1.0);
  return std::min(1.0, 2 * std::min(boost::math::cdf(law, at),
                                    boost::math::cdf(boost::math::complement(law, at))));
}

double orderStatisticQuantile(double p, std::uint64_t k, std::uint64_t n) {
  return boost::math::quantile(orderStatistic(k, n), p);
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
