#pragma once

// Numbers of one array in one notation.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/tx_array.h"

namespace shell {

// Chooses the notation for the elements of `value` at `positions` (those that will be shown): whole
// numbers, fixed decimals, fixed decimals times a common power of ten, or an exponent each when
// magnitudes differ so much that a common one would hide digits.
class NumberColumns {
 public:
  NumberColumns(txArray const& value, std::vector<std::uint64_t> const& positions, int digits);

  // " times 1e+06", or "".
  std::string commonFactor() const;
  std::string text(std::uint64_t position) const;

 private:
  enum class Notation { whole, fixed, exponent };

  double scaled(double x) const;
  std::string one(double x) const;

  txArray const& value_;
  bool isFloat_;
  Notation notation_ = Notation::whole;
  int decimals_ = 0;
  int factor_ = 0;  // the common power of ten
};

}  // namespace shell
