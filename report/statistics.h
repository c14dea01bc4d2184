#pragma once

// Probabilities of the report's tests: each p is the chance that a perfect source looks at least as
// odd. Distributions are those of Boost.Math.

#include <cstdint>
#include <span>
#include <vector>

namespace report {

// Two-sided: too uneven and too even both count.
double chiSquareP(double statistic, double degreesOfFreedom);
// The statistic of counts that are all expected to be `expected`.
double chiSquareOfEqualCounts(std::span<std::uint64_t const> counts, double expected);

// Two-sided p of a standard normal value.
double normalP(double z);
// Phi, and its inverse.
double normalBelow(double z);
double normalQuantile(double p);

// Kolmogorov's limit law: P(sqrt(n) D > lambda).
double kolmogorovP(double lambda);
// lambda of which that is p.
double kolmogorovLimit(double p);

// Two-sided p of a count of `n` events of probability `chance` each.
double binomialP(std::uint64_t count, std::uint64_t n, double chance);

// The k-th smallest (from 1) of n uniforms: two-sided p of a value, and the value below which it
// lies with probability p.
double orderStatisticP(double value, std::uint64_t k, std::uint64_t n);
double orderStatisticQuantile(double p, std::uint64_t k, std::uint64_t n);

// p of the oddest of `count` independent tests.
double smallestOf(double p, double count);
// |z| that the largest of `count` independent standard normals exceeds with probability p.
double largestNormalLimit(double p, double count);

// Holm's adjusted p-values: those below a level are the ones to reject with at most that chance of
// any false rejection, however the tests depend on each other.
std::vector<double> holm(std::span<double const> p);

}  // namespace report
