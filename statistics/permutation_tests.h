#pragma once

// Tests of permutations. A sample is one permutation of 1 to n after the other, or, of selections,
// k values of each.

#include <cstddef>
#include <span>

namespace statistics {

// Whether all n! permutations are equally likely.
double permutationFrequencies(std::span<double const> sample, std::size_t n);
// How many values stand in their own place.
double fixedPoints(std::span<double const> sample, std::size_t n);
// Whether the pair of the first and the last value of each selection of k is any of the n (n - 1)
// ordered pairs with the same probability.
double selectionPairs(std::span<double const> sample, std::size_t k, std::size_t n);

}  // namespace statistics
