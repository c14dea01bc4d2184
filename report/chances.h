#pragma once

// Chances that a perfect source looks as odd as what was seen, and the limits that belong to them:
// what plots with bands need beyond statistics/p_values.h.

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

// The largest distance of the empirical distribution of n values from the true one that is exceeded
// with probability p.
double kolmogorovLimit(double p, std::uint64_t n);

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

// Holm's adjusted p-values (S. Holm, Scandinavian Journal of Statistics 6 (1979) 65-70): those
// below a level are the ones to reject with at most that chance of any false rejection, however the
// tests depend on each other.
std::vector<double> holm(std::span<double const> p);

}  // namespace report
