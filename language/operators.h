#pragma once

// What the operators of the language do.

#include "language/ast.h"
#include "language/values.h"

namespace language {

// Elementwise operators broadcast: dimensions of extent 1 are repeated. Classes: an integer class
// wins over the floating ones and saturates, single over double; logicals and characters count as
// double. Errors name operator, sizes and classes.
txArrayPtr applyBinary(Operator op, txArray const& left, txArray const& right);
txArrayPtr applyUnary(Operator op, txArray const& operand);

// `*` of two matrices.
txArrayPtr matrixProduct(txArray const& left, txArray const& right);

// [rows] of values: side by side, then one above the other.
txArrayPtr concatenate(std::span<txArrayPtr const> values, std::size_t dimension);

char const* spelling(Operator op);

}  // namespace language
