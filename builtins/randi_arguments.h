#pragma once

// What randi has beyond the shared grammar: its limits and its element types.

#include "host/tx_array.h"
#include "rng/randstream.h"

namespace builtins {

struct Limits {
  double low;
  double high;
};

// From the first argument: imax means [1, imax], two elements mean [imin, imax]. Calls `invalid`
// with `position` for all else.
Limits parseLimits(txArray const& limits, void (*invalid)(int position), int position);

// The stream's own check of the limits (checkRandiLimits), its errors naming the argument.
void checkRange(Limits const& limits, int position);

// Double, single, logical and the integer classes of up to 32 bits.
bool isIntegerElement(txClassID classID) noexcept;

// Fills an array of such a class with n integers.
void fillIntegers(randstream& stream, Limits const& limits, txArray& result, std::uint64_t n);

}  // namespace builtins
