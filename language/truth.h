#pragma once

// Values as truth values. One rule for conditions, `&`, `|`, `~`, any, all and find: 0 is false,
// NaN is neither and refused, every other number is true, complex ones too.

#include "language/values.h"

namespace language {

// The truth of each element, as a full logical array. `position` is that of a function's argument.
txArrayPtr truthOf(txArray const& value, int position = 0);

// A condition: all elements true; an empty array is false.
bool isTrue(txArray const& value);

}  // namespace language
