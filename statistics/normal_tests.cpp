#include "statistics/normal_tests.h"

#include <algorithm>
#include <boost/math/distributions/normal.hpp>
#include <cmath>
#include <limits>
#include <numeric>

#include "statistics/p_values.h"

namespace statistics {

void NormalTally::add(std::span<double const> z) {
  for (double const x : z) {
    double power = 1;
    for (double& sum : powers_) sum += power *= x;
    // Cell 0 holds what lies below, the last one what lies above; NaN would stay below.
    double const cell = std::floor((x + kEnd) * kCellsPerSigma) + 1;
    ++counts_[cell >= 1 ? static_cast<std::size_t>(std::min(cell, double{kCells - 1})) : 0];
  }
  n_ += z.size();
}

double NormalTally::edge(std::size_t cell) {
  if (cell == 0) return -std::numeric_limits<double>::infinity();
  return static_cast<double>(cell - 1) / kCellsPerSigma - kEnd;
}

double NormalTally::expectedBelow(double z) const {
  return static_cast<double>(n_) * cdf(boost::math::normal(), z);
}

std::vector<NamedPValue> NormalTally::pValues() const {
  struct Moment {
    char const* name;
    double mean;
    double variance;
  };
  // E z^k, and E z^2k - (E z^k)^2.
  static constexpr Moment kOf[kMoments] = {
      {"mean", 0, 1}, {"variance", 1, 2}, {"third moment", 0, 15}, {"fourth moment", 3, 96}};
  auto const n = static_cast<double>(n_);
  std::vector<NamedPValue> result;
  for (std::size_t k = 0; k < kMoments; ++k) {
    double const z = (powers_[k] - n * kOf[k].mean) / std::sqrt(n * kOf[k].variance);
    result.push_back({kOf[k].name, normalTail(z)});
  }

  // By symmetry the cells above 0 are those below, which keeps the digits of the upper tail.
  std::vector<double> expected(kCells);
  for (std::size_t i = 0; i < kCells / 2; ++i) {
    expected[i] = expectedBelow(edge(i + 1)) - expectedBelow(edge(i));
    expected[kCells - 1 - i] = expected[i];
  }
  result.push_back({"histogram", chiSquareFit(counts_, expected)});

  static constexpr std::array kLower = {"below -3", "below -4", "below -5", "below -6"};
  static constexpr std::array kUpper = {"above 3", "above 4", "above 5", "above 6"};
  for (std::size_t i = 0; i < kLower.size(); ++i) {
    int const sigma = static_cast<int>(i) + 3;
    auto const cells = (kEnd - sigma) * kCellsPerSigma + 1;
    double const mean = expectedBelow(-sigma);
    auto const beyond = [&](auto from) {
      return static_cast<double>(std::accumulate(from, from + cells, std::uint64_t{0}));
    };
    result.push_back({kLower[i], poissonTail(beyond(counts_.begin()), mean)});
    result.push_back({kUpper[i], poissonTail(beyond(counts_.rbegin()), mean)});
  }
  return result;
}

}  // namespace statistics
