#pragma once

// P-values of test statistics. A p-value is the probability, when the hypothesis is true, of a
// statistic at least as large as the one seen; over many true hypotheses it is uniform on (0,1).
// Both ends tell a fault: near 0 the sample fits too badly, near 1 too well.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace statistics {

double chiSquareTail(double statistic, double degreesOfFreedom);
double normalTail(double z);
// Half of the probability of `count` itself is counted, so that the p-values of rare and of
// frequent counts are each other's mirror image.
double poissonTail(double count, double mean);
// Of the largest distance between the empirical distribution of `n` values and the true one:
// Kolmogorov's limit with the correction of M. A. Stephens, Journal of the Royal Statistical
// Society B 32 (1970); good to three digits from n = 20 on.
double kolmogorovTail(double distance, std::size_t n);

// Pearson's chi-square of counts against what was expected of each cell. Neighbouring cells are
// pooled until at least 10 are expected. Needs two cells after that; else the p-value is 0.5.
double chiSquareFit(std::span<std::uint64_t const> counts, std::span<double const> expected);
// The same with all cells equally likely, not pooled.
double chiSquareUniform(std::span<std::uint64_t const> counts);

// Kolmogorov and Smirnov: whether the values are uniform on (0,1).
double uniformFit(std::vector<double> values);

// The verdict on many p-values at once: the probability that the most extreme of them, at either
// end, is at least as extreme as it is (Bonferroni: at most that, and 1 at most).
double familyWise(std::span<double const> pValues);

}  // namespace statistics
