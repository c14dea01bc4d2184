#include "statistics/uniform_tests.h"

#include <algorithm>
#include <array>
#include <bit>
#include <boost/math/distributions/binomial.hpp>
#include <boost/math/distributions/geometric.hpp>
#include <cmath>
#include <cstdint>

#include "statistics/p_values.h"

namespace statistics {

namespace {

using Counts = std::vector<std::uint64_t>;
using Probabilities = std::vector<double>;

std::uint64_t leadingBits(double u, int bits) {
  return static_cast<std::uint64_t>(std::ldexp(u, bits));
}

double fit(Counts const& counts, Probabilities probabilities, std::size_t n) {
  for (double& p : probabilities) p *= static_cast<double>(n);
  return chiSquareFit(counts, probabilities);
}

Probabilities binomialHalves(int bits) {
  boost::math::binomial const weight(bits, 0.5);
  Probabilities result;
  for (int k = 0; k <= bits; ++k) result.push_back(pdf(weight, k));
  return result;
}

// Days of the points of which no two share a number.
std::vector<std::uint64_t> birthdaysOf(Sample u, std::span<std::size_t const> offsets, int bits) {
  std::vector<bool> used(u.size());
  std::vector<std::uint64_t> days;
  for (std::size_t i = 0; i + offsets.back() < u.size(); ++i) {
    if (std::ranges::any_of(offsets, [&](std::size_t offset) { return used[i + offset]; }))
      continue;
    std::uint64_t day = 0;
    for (std::size_t const offset : offsets) {
      used[i + offset] = true;
      day = day << bits | leadingBits(u[i + offset], bits);
    }
    days.push_back(day);
  }
  return days;
}

std::size_t repeated(std::span<std::uint64_t> days) {
  std::ranges::sort(days);
  for (std::size_t i = days.size() - 1; i > 0; --i) days[i] -= days[i - 1];
  std::ranges::sort(days);
  std::size_t count = 0;
  for (std::size_t i = 1; i < days.size(); ++i) count += days[i] == days[i - 1];
  return count;
}

constexpr int kMatrixSize = 64;
using Matrix = std::array<std::uint64_t, kMatrixSize>;

int rankOf(Matrix rows) {
  int rank = 0;
  for (int bit = 0; bit < kMatrixSize; ++bit) {
    auto const free = rows.begin() + rank;
    auto const pivot = std::find_if(free, rows.end(), [&](auto row) { return row >> bit & 1; });
    if (pivot == rows.end()) continue;
    std::iter_swap(free, pivot);
    std::uint64_t const lead = *free;
    for (auto row = free + 1; row != rows.end(); ++row)
      if (*row >> bit & 1) *row ^= lead;
    ++rank;
  }
  return rank;
}

// The probability that a random square matrix over GF(2) lacks `missing` ranks; for 64 rows the
// limit of infinitely many is exact.
double missingRanksProbability(int missing) {
  double p = std::ldexp(1.0, -missing * missing);
  for (int i = missing + 1; i <= kMatrixSize; ++i) p *= 1 - std::ldexp(1.0, -i);
  for (int i = 1; i <= missing; ++i) p /= 1 - std::ldexp(1.0, -i);
  return p;
}

}  // namespace

std::vector<double> lowBitsFirst(Sample u, int bits) {
  std::vector<double> result;
  result.reserve(u.size());
  for (double const x : u) {
    std::uint64_t const word = leadingBits(x, bits);
    std::uint64_t reversed = 0;
    for (int i = 0; i < bits; ++i) reversed = reversed << 1 | (word >> i & 1);
    result.push_back(std::ldexp(static_cast<double>(reversed), -bits));
  }
  return result;
}

double serial(Sample u, int dimension, int bits) {
  auto const step = static_cast<std::size_t>(dimension);
  Counts counts(std::size_t{1} << (dimension * bits));
  for (std::size_t at = 0; at + step <= u.size(); at += step) {
    std::uint64_t cell = 0;
    for (double const x : u.subspan(at, step)) cell = cell << bits | leadingBits(x, bits);
    ++counts[cell];
  }
  return chiSquareUniform(counts);
}

double gaps(Sample u, double low, double high) {
  boost::math::geometric const length(high - low);
  auto const longest = static_cast<std::size_t>(20 / (high - low));
  Counts counts(longest + 1);
  std::size_t gap = 0;
  std::size_t n = 0;
  for (double const x : u) {
    if (x < low || x >= high) {
      ++gap;
      continue;
    }
    ++counts[std::min(gap, longest)];
    ++n;
    gap = 0;
  }
  Probabilities probabilities;
  for (std::size_t k = 0; k < longest; ++k)
    probabilities.push_back(pdf(length, static_cast<double>(k)));
  probabilities.push_back(cdf(complement(length, static_cast<double>(longest - 1))));
  return fit(counts, probabilities, n);
}

double orders(Sample u, int size) {
  auto const step = static_cast<std::size_t>(size);
  std::size_t cells = 1;
  for (std::size_t i = 2; i <= step; ++i) cells *= i;
  Counts counts(cells);
  for (std::size_t at = 0; at + step <= u.size(); at += step) {
    Sample const group = u.subspan(at, step);
    // Each number's place among those before it makes a digit of the order's number.
    std::size_t order = 0;
    for (std::size_t i = 1; i < step; ++i) {
      auto const below =
          std::ranges::count_if(group.first(i), [&](double x) { return x < group[i]; });
      order = order * (i + 1) + static_cast<std::size_t>(below);
    }
    ++counts[order];
  }
  return chiSquareUniform(counts);
}

double largest(Sample u, int size) {
  auto const step = static_cast<std::size_t>(size);
  std::vector<double> powers;
  for (std::size_t at = 0; at + step <= u.size(); at += step)
    powers.push_back(std::pow(std::ranges::max(u.subspan(at, step)), size));
  return uniformFit(std::move(powers));
}

double birthdaySpacings(Sample u, std::span<std::size_t const> offsets, int bits,
                        std::size_t birthdays) {
  std::vector<std::uint64_t> days = birthdaysOf(u, offsets, bits);
  std::size_t const years = days.size() / birthdays;
  std::size_t count = 0;
  for (std::size_t year = 0; year < years; ++year)
    count += repeated(std::span(days).subspan(year * birthdays, birthdays));
  double const daysOfYear = std::ldexp(1.0, bits * static_cast<int>(offsets.size()));
  double const mean = std::pow(static_cast<double>(birthdays), 3) / (4 * daysOfYear);
  return poissonTail(static_cast<double>(count), mean * static_cast<double>(years));
}

double hammingWeights(Sample u, int bits) {
  Counts counts(static_cast<std::size_t>(bits) + 1);
  for (double const x : u) ++counts[static_cast<std::size_t>(std::popcount(leadingBits(x, bits)))];
  return fit(counts, binomialHalves(bits), u.size());
}

double hammingPairs(Sample u, int bits) {
  std::size_t const weights = static_cast<std::size_t>(bits) + 1;
  auto const weight = [&](double x) {
    return static_cast<std::size_t>(std::popcount(leadingBits(x, bits)));
  };
  Counts counts(weights * weights);
  for (std::size_t i = 0; i + 1 < u.size(); i += 2)
    ++counts[weight(u[i]) * weights + weight(u[i + 1])];
  Probabilities const one = binomialHalves(bits);
  Probabilities both;
  for (double const first : one)
    for (double const second : one) both.push_back(first * second);
  return fit(counts, std::move(both), u.size() / 2);
}

double correlation(Sample u, std::size_t lag) {
  double sum = 0;
  std::size_t const n = u.size() - lag;
  for (std::size_t i = 0; i < n; ++i) sum += (u[i] - 0.5) * (u[i + lag] - 0.5);
  constexpr double kVariance = 1.0 / 12;  // of a uniform
  return normalTail(sum / (kVariance * std::sqrt(static_cast<double>(n))));
}

double matrixRanks(Sample u) {
  constexpr int kBits = 16;
  constexpr std::size_t kNumbers = kMatrixSize * kMatrixSize / kBits;
  Counts counts(3);  // full rank, one less, still less
  std::size_t n = 0;
  for (std::size_t at = 0; at + kNumbers <= u.size(); at += kNumbers, ++n) {
    Matrix rows{};
    for (std::size_t i = 0; i < kNumbers; ++i) {
      std::uint64_t& row = rows[i * kBits / kMatrixSize];
      row = row << kBits | leadingBits(u[at + i], kBits);
    }
    ++counts[static_cast<std::size_t>(std::min(kMatrixSize - rankOf(rows), 2))];
  }
  double const full = missingRanksProbability(0);
  double const less = missingRanksProbability(1);
  return fit(counts, {full, less, 1 - full - less}, n);
}

}  // namespace statistics
