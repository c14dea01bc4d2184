#pragma once

// String arrays under the operators.

#include "host/export.h"
#include "language/operators.h"

namespace language {

// `+` joins texts, comparisons order them; at least one operand is a string array. Char rows count
// as one string, numbers as their decimal text.
txArrayPtr applyToStrings(Operator op, txArray const& left, txArray const& right);

// Any value with elements or text as a string array of the same size (a char row as one string).
txArrayPtr toStrings(txArray const& value);

// A number as text: up to `digits` significant ones, no trailing zeros; NaN, Inf, -Inf.
TV_EXPORT std::string numberText(double value, int digits);
// Element `index` of a full array of numbers, logicals or characters as text, complex ones too.
TV_EXPORT std::string elementText(txArray const& value, std::uint64_t index, int digits);

}  // namespace language
