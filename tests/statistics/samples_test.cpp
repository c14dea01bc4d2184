// Every test of samples: its p-values are uniform where the hypothesis is true, and leave
// [1e-6, 1 - 1e-6] on a sample that breaks it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <ostream>
#include <random>
#include <vector>

#include "statistics/normal_tests.h"
#include "statistics/p_values.h"
#include "statistics/permutation_tests.h"
#include "statistics/uniform_tests.h"

namespace {

using namespace statistics;
using Numbers = std::vector<double>;

// A generator that has nothing to do with ours.
std::mt19937_64 engine(20261122);

Numbers uniforms(std::size_t n) {
  Numbers result(n);
  for (double& x : result) x = (static_cast<double>(engine() >> 11) + 0.5) * 0x1p-53;
  return result;
}
Numbers normals(std::size_t n) {
  Numbers result(n);
  std::normal_distribution<double> normal;
  for (double& x : result) x = normal(engine);
  return result;
}
Numbers permutationsOf(std::size_t size, std::size_t n) {
  Numbers result(n / size * size);
  for (auto at = result.begin(); at != result.end(); at += static_cast<std::ptrdiff_t>(size)) {
    auto const end = at + static_cast<std::ptrdiff_t>(size);
    std::iota(at, end, 1.0);
    std::shuffle(at, end, engine);
  }
  return result;
}

double normalP(Numbers const& z, std::size_t which) {
  NormalTally tally;
  tally.add(std::span(z).first(z.size() / 3));
  tally.add(std::span(z).subspan(z.size() / 3));
  return tally.pValues()[which].p;
}

constexpr std::size_t kPair[] = {0, 1};
constexpr std::size_t kLags[] = {0, 2, 5};

struct Row {
  char const* name;
  std::size_t n;
  std::function<Numbers(std::size_t)> sample;
  std::function<double(Numbers const&)> test;
  std::function<void(Numbers&)> rig;  // breaks what the test looks at, and as little else as it can
};

void PrintTo(Row const& row, std::ostream* out) { *out << row.name; }

void forPairs(Numbers& x, std::function<void(double&, double&)> const& change) {
  for (std::size_t i = 0; i + 1 < x.size(); i += 2) change(x[i], x[i + 1]);
}
void bend(Numbers& u) {
  for (double& x : u) x = std::pow(x, 1.2);
}
void cut(Numbers& u) {
  for (double& x : u) x = std::floor(x * 0x1p8) * 0x1p-8;
}
void repeatWeights(Numbers& u) {
  forPairs(u, [](double& a, double& b) { b = a; });
}
auto scaledNormals(double factor, double shift) {
  return [=](Numbers& z) {
    for (double& x : z) x = factor * x + shift;
  };
}

std::vector<Row> const kRows = {
    {"equidistribution", 20000, uniforms, [](auto& u) { return serial(u, 1, 6); }, bend},
    {"pairs", 20000, uniforms, [](auto& u) { return serial(u, 2, 3); }, repeatWeights},
    {"triples", 20000, uniforms, [](auto& u) { return serial(u, 3, 2); },
     [](Numbers& u) {
       for (std::size_t i = 2; i < u.size(); i += 3) u[i] = std::fmod(u[i - 1] + u[i - 2], 1);
     }},
    {"gaps", 20000, uniforms, [](auto& u) { return gaps(u, 0.25, 0.5); },
     [](Numbers& u) { std::sort(u.begin(), u.begin() + 2000); }},
    {"orders", 20000, uniforms, [](auto& u) { return orders(u, 4); },
     [](Numbers& u) {
       forPairs(u, [](double& a, double& b) {
         if (a > 0.8) std::swap(a, b);
       });
     }},
    {"largest", 20000, uniforms, [](auto& u) { return largest(u, 5); }, bend},
    {"birthdays of pairs", 16384, uniforms,
     [](auto& u) { return birthdaySpacings(u, kPair, 9, 128); }, cut},
    {"birthdays at lags", 16384, uniforms,
     [](auto& u) { return birthdaySpacings(u, kLags, 6, 128); },
     [](Numbers& u) {
       for (std::size_t i = 5; i < u.size(); ++i) u[i] = std::fmod(u[i - 3] + u[i - 5], 1);
     }},
    {"Hamming weights", 20000, uniforms, [](auto& u) { return hammingWeights(u, 16); }, bend},
    {"Hamming pairs", 20000, uniforms, [](auto& u) { return hammingPairs(u, 8); }, repeatWeights},
    {"correlation", 20000, uniforms, [](auto& u) { return correlation(u, 3); },
     [](Numbers& u) {
       for (std::size_t i = 30; i < u.size(); i += 10) u[i] = u[i - 3];
     }},
    {"ranks", 256 * 200, uniforms, [](auto& u) { return matrixRanks(u); },
     // The last row of each matrix is the sum of the two before.
     [](Numbers& u) {
       for (std::size_t i = 252; i + 3 < u.size(); i += 256)
         for (std::size_t j = i; j < i + 4; ++j)
           u[j] = std::ldexp(static_cast<double>(static_cast<unsigned>(u[j - 4] * 65536) ^
                                                 static_cast<unsigned>(u[j - 8] * 65536)),
                             -16);
     }},
    {"normal mean", 5000, normals, [](auto& z) { return normalP(z, 0); }, scaledNormals(1, 0.1)},
    {"normal variance", 5000, normals, [](auto& z) { return normalP(z, 1); },
     scaledNormals(1.1, 0)},
    {"normal third moment", 5000, normals, [](auto& z) { return normalP(z, 2); },
     [](Numbers& z) { z[0] = 14; }},
    {"normal fourth moment", 20000, normals, [](auto& z) { return normalP(z, 3); },
     [](Numbers& z) { z[0] = -10; }},
    {"normal histogram", 20000, normals, [](auto& z) { return normalP(z, 4); },
     [](Numbers& z) {
       for (double& x : z)
         if (x > 1 && x < 1.1) x = 0;
     }},
    {"normal tail below -3", 60000, normals, [](auto& z) { return normalP(z, 5); },
     [](Numbers& z) { std::fill_n(z.begin(), 60, -3.1); }},
    {"normal tail above 3", 60000, normals, [](auto& z) { return normalP(z, 6); },
     [](Numbers& z) { std::fill_n(z.begin(), 60, 3.1); }},
    {"permutations", 20000, [](auto n) { return permutationsOf(4, n); },
     [](auto& p) { return permutationFrequencies(p, 4); },
     [](Numbers& p) {
       for (std::size_t i = 0; i < p.size(); i += 16) std::sort(&p[i], &p[i] + 4);
     }},
    {"fixed points", 40000, [](auto n) { return permutationsOf(20, n); },
     [](auto& p) { return fixedPoints(p, 20); },
     [](Numbers& p) {  // one in 25 is the identity
       for (std::size_t i = 0; i < p.size(); i += 500) std::sort(&p[i], &p[i] + 20);
     }},
    {"selections", 20000, [](auto n) { return permutationsOf(5, n); },
     [](auto& p) { return selectionPairs(p, 5, 5); },
     [](Numbers& p) {
       for (std::size_t i = 0; i < p.size(); i += 5)
         if (p[i] == 1) std::sort(&p[i], &p[i] + 5);
     }},
};

class SampleTest : public testing::TestWithParam<Row> {};

TEST_P(SampleTest, PValuesAreUniformWhereTheHypothesisIsTrue) {
  Row const& row = GetParam();
  constexpr int kSamples = 200;
  std::vector<double> ps;
  for (int i = 0; i < kSamples; ++i) ps.push_back(row.test(row.sample(row.n)));
  double const p = uniformFit(ps);
  EXPECT_GT(p, 1e-4);
  EXPECT_GT(familyWise(ps), 1e-4);
}

TEST_P(SampleTest, FailsWhereTheHypothesisIsBroken) {
  Row const& row = GetParam();
  Numbers sample = row.sample(row.n);
  row.rig(sample);
  EXPECT_LT(familyWise(std::vector{row.test(sample)}), 1e-6);
}

INSTANTIATE_TEST_SUITE_P(All, SampleTest, testing::ValuesIn(kRows), [](auto const& tested) {
  std::string name = tested.param.name;
  std::erase_if(name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); });
  return name;
});

TEST(Normals, FarTailsAreCounted) {
  for (int sigma = 3; sigma <= 6; ++sigma) {
    for (double const sign : {-1.0, 1.0}) {
      Numbers z = normals(1000);
      std::fill_n(z.begin(), 15, sign * (sigma + 0.5));
      auto const which = static_cast<std::size_t>(5 + 2 * (sigma - 3) + (sign > 0));
      EXPECT_LT(normalP(z, which), 1e-6) << sign * sigma;
    }
  }
}

TEST(LowBitsFirst, TurnsTheBitsRound) {
  EXPECT_EQ(lowBitsFirst(Numbers{0.5, 0.625, 0.25 + 0x1p-53}, 4), (Numbers{0.0625, 0.3125, 0.125}));
}

}  // namespace
