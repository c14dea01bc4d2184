#pragma once

// Tests of numbers that should be independent and uniform on (0,1). Each takes a sample and returns
// a p-value (statistics/p_values.h), and looks at the leading bits of the numbers; lowBitsFirst
// turns a sample round for the others. Sources: D. E. Knuth, The Art of Computer Programming 2,
// 3.3.2; G. Marsaglia, A current view of random number generators (1985); P. L'Ecuyer and
// R. Simard, ACM Transactions on Mathematical Software 33 (2007) 22.

#include <cstddef>
#include <span>
#include <vector>

namespace statistics {

using Sample = std::span<double const>;

// The numbers with their leading `bits` bits in reverse order; further bits are dropped.
std::vector<double> lowBitsFirst(Sample u, int bits);

// Whether groups of `dimension` successive numbers fill a grid of 2^bits intervals an axis evenly.
// Equidistribution for dimension 1, serial pairs and triples for 2 and 3.
double serial(Sample u, int dimension, int bits);

// How long it takes between visits of the interval [low, high): geometric.
double gaps(Sample u, double low, double high);

// The order of `size` successive numbers: size! equally likely ones.
double orders(Sample u, int size);

// The largest of `size` successive numbers: its power of `size` is uniform.
double largest(Sample u, int size);

// Birthday spacings. Point i has a coordinate of `bits` bits from each of the numbers
// u[i + offset]; no two points share a number. `offsets` rise from 0. The points are taken
// `birthdays` at a time as the birthdays of a year of 2^(bits * offsets) days; spacings between
// neighbours that are seen more than once are counted over all years: Poisson, with a mean of
// birthdays^3 / (4 days) a year.
double birthdaySpacings(Sample u, std::span<std::size_t const> offsets, int bits,
                        std::size_t birthdays);

// How many of the leading `bits` bits are 1: binomial.
double hammingWeights(Sample u, int bits);
// Whether the weights of two successive numbers are independent.
double hammingPairs(Sample u, int bits);

// Sums of products of centred numbers `lag` apart: normal.
double correlation(Sample u, std::size_t lag);

// Ranks over GF(2) of 64-by-64 matrices, a row of which is the leading 16 bits of four numbers.
double matrixRanks(Sample u);

}  // namespace statistics
