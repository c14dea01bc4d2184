#include "statistics/permutation_tests.h"

#include <vector>

#include "statistics/p_values.h"
#include "statistics/uniform_tests.h"

namespace statistics {

double permutationFrequencies(std::span<double const> sample, std::size_t n) {
  return orders(sample, static_cast<int>(n));
}

double fixedPoints(std::span<double const> sample, std::size_t n) {
  std::vector<std::uint64_t> counts(n + 1);
  for (std::size_t at = 0; at + n <= sample.size(); at += n) {
    std::size_t fixed = 0;
    for (std::size_t i = 0; i < n; ++i) fixed += sample[at + i] == static_cast<double>(i + 1);
    ++counts[fixed];
  }
  // k fixed points: 1/k! times the sum of (-1)^j / j! for j from 0 to n - k.
  std::size_t const whole = sample.size() / n;
  auto const permutations = static_cast<double>(whole);
  std::vector<double> expected(n + 1);
  double overFactorial = 1;
  for (std::size_t k = 0; k <= n; ++k) {
    if (k > 0) overFactorial /= static_cast<double>(k);
    double deranged = 0;
    double term = 1;
    for (std::size_t j = 0; j <= n - k; ++j) {
      deranged += term;
      term /= -static_cast<double>(j + 1);
    }
    expected[k] = permutations * overFactorial * deranged;
  }
  return chiSquareFit(counts, expected);
}

double selectionPairs(std::span<double const> sample, std::size_t k, std::size_t n) {
  std::vector<std::uint64_t> counts(n * (n - 1));
  for (std::size_t at = 0; at + k <= sample.size(); at += k) {
    auto const first = static_cast<std::size_t>(sample[at]) - 1;
    auto const last = static_cast<std::size_t>(sample[at + k - 1]) - 1;
    ++counts[first * (n - 1) + last - (last > first ? 1 : 0)];
  }
  return chiSquareUniform(counts);
}

}  // namespace statistics
