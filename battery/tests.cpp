#include "battery/tests.h"

#include <algorithm>
#include <cmath>

#include "statistics/normal_tests.h"
#include "statistics/p_values.h"
#include "statistics/permutation_tests.h"
#include "statistics/uniform_tests.h"

namespace battery {

namespace {

using namespace statistics;

// Bits an axis that leave 16 numbers or more for every cell of a grid.
int gridBits(Sample u, int dimension) {
  auto const numbers = static_cast<double>(u.size());
  return static_cast<int>(std::log2(numbers / dimension / 16) / dimension);
}

// Points of 30 bits, 4096 a year: 16 repeated spacings expected of each.
double birthdays(Sample u, std::vector<std::size_t> const& offsets) {
  constexpr int kDayBits = 30;
  constexpr std::size_t kBirthdays = 4096;
  return birthdaySpacings(u, offsets, kDayBits / static_cast<int>(offsets.size()), kBirthdays);
}

struct UniformTest {
  char const* name;
  double (*p)(Sample u, Source const& source);
  bool atOffsets = false;  // only where the source has them
};

constexpr UniformTest kUniformTests[] = {
    {"equidistribution", [](Sample u, auto&) { return serial(u, 1, gridBits(u, 1)); }},
    {"Kolmogorov-Smirnov",
     [](Sample u, auto&) {
       return uniformFit({u.begin(), u.end()});
     }},
    {"serial pairs", [](Sample u, auto&) { return serial(u, 2, gridBits(u, 2)); }},
    {"serial triples", [](Sample u, auto&) { return serial(u, 3, gridBits(u, 3)); }},
    {"gaps below 1/32", [](Sample u, auto&) { return gaps(u, 0, 0x1p-5); }},
    {"gaps from 1/2 to 5/8", [](Sample u, auto&) { return gaps(u, 0.5, 0.625); }},
    {"orders of 6", [](Sample u, auto&) { return orders(u, 6); }},
    {"largest of 8", [](Sample u, auto&) { return largest(u, 8); }},
    {"birthday spacings", [](Sample u, auto&) { return birthdays(u, {0}); }},
    {"birthday spacings of pairs",
     [](Sample u, auto&) {
       return birthdays(u, {0, 1});
     }},
    {"birthday spacings of triples",
     [](Sample u, auto&) {
       return birthdays(u, {0, 1, 2});
     }},
    {"birthday spacings at own lags",
     [](Sample u, Source const& source) { return birthdays(u, source.offsets); }, true},
    {"Hamming weights", [](Sample u, auto&) { return hammingWeights(u, 24); }},
    {"Hamming weights of pairs", [](Sample u, auto&) { return hammingPairs(u, 24); }},
    {"correlation at lag 1", [](Sample u, auto&) { return correlation(u, 1); }},
    {"correlation at lag 2", [](Sample u, auto&) { return correlation(u, 2); }},
    {"correlation at own short lag",
     [](Sample u, Source const& source) { return correlation(u, source.offsets[1]); }, true},
    {"correlation at own long lag",
     [](Sample u, Source const& source) { return correlation(u, source.offsets.back()); }, true},
    {"ranks of 64-by-64 matrices", [](Sample u, auto&) { return matrixRanks(u); }},
};

constexpr std::size_t kBlock = std::size_t{1} << 16;

}  // namespace

std::vector<Result> testUniforms(Source const& source, std::uint32_t seed, int log2Numbers) {
  auto const fill = source.start(seed);
  std::vector<double> u(std::size_t{1} << log2Numbers);
  std::vector<Result> results;
  for (UniformTest const& test : kUniformTests) {
    if (test.atOffsets && source.offsets.empty()) continue;
    fill(u);
    results.push_back({test.name + std::string(", high bits"), test.p(u, source)});
    fill(u);
    u = lowBitsFirst(u, source.bits);
    results.push_back({test.name + std::string(", low bits"), test.p(u, source)});
  }
  return results;
}

std::vector<Result> testNormals(randstream& stream, int log2Numbers) {
  NormalTally tally;
  std::vector<double> z(kBlock);
  for (std::size_t left = std::size_t{1} << log2Numbers; left > 0; left -= std::min(left, kBlock)) {
    std::span<double> const block = std::span(z).first(std::min(left, kBlock));
    stream.randnFcn(block.data(), block.size(), false);
    tally.add(block);
  }
  std::vector<Result> results;
  for (NamedPValue const& result : tally.pValues()) results.push_back({result.name, result.p});
  return results;
}

std::vector<Result> testPermutations(randstream& stream, int log2Numbers) {
  std::vector<double> sample(std::size_t{1} << log2Numbers);
  // As many permutations of n, or selections of k of n, as there is room for.
  auto const permute = [&](std::size_t n) -> std::vector<double> const& {
    for (std::size_t at = 0; at + n <= sample.size(); at += n)
      stream.randpermFcn(sample.data() + at, n);
    return sample;
  };
  auto const select = [&](std::size_t k, std::size_t n) -> std::vector<double> const& {
    for (std::size_t at = 0; at + k <= sample.size(); at += k)
      stream.randkpermFcn(sample.data() + at, k, static_cast<double>(n));
    return sample;
  };
  return {
      {"permutations of 5", permutationFrequencies(permute(5), 5)},
      {"fixed points of 52", fixedPoints(permute(52), 52)},
      {"7 of 7", permutationFrequencies(select(7, 7), 7)},
      {"5 of 12", selectionPairs(select(5, 12), 5, 12)},
      {"3 of 40", selectionPairs(select(3, 40), 3, 40)},
  };
}

}  // namespace battery
