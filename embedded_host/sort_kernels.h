#pragma once

// The vector steps of the sort of uniforms (sort_uniforms.h).

#include <cstddef>
#include <cstdint>

namespace embedded_host::sort_kernels {

// A value of [0,1) as a fixed-point number of this many bits after the point.
inline constexpr int kFixedBits = 53;

struct FixedPoint {
  bool inRange;  // all values lie in [0,1)
  bool exact;    // and all are multiples of 2^-53, +0 included but not -0
};
// Writes the values as fixed-point numbers, rounded down; those out of range as 0.
FixedPoint toFixed(double const* values, std::size_t n, std::int64_t* fixed);

// Columns stand side by side in groups: row j of column c of a group is number [j * kGroup + c].
inline constexpr std::size_t kGroup = 8;
inline constexpr std::size_t kRows = 16;

// Sets all columns of `groups` groups to the largest number.
void clearColumns(std::int64_t* columns, std::size_t groups);
// Sorts each column of `groups` groups, ascending.
void sortColumns(std::int64_t* columns, std::size_t groups);

// Takes sorted entries apart, all of them positive: each is a fixed-point number without its
// leading bits, which are those of `base`, above an index of `indexBits` bits.
void takeApart(std::int64_t const* entries, std::size_t n, int indexBits, std::int64_t base,
               double* values, double* positions);

}  // namespace embedded_host::sort_kernels
