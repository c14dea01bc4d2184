#pragma once

// The sort behind random permutations: fast where the values are spread evenly over [0,1).

#include <cstdint>
#include <span>

#include "host/tx_array.h"

namespace embedded_host {

// A stable ascending sort: the values, and the 1-based positions they had, in arrays of dimensions
// `dims`. Both are null when the values do not suit: some lie outside [0,1), or too many crowd in
// one place.
struct SortedUniforms {
  txArrayPtr values;
  txArrayPtr positions;
};
SortedUniforms sortUniforms(std::span<const double> values, std::span<const std::uint64_t> dims);

}  // namespace embedded_host
