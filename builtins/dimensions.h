#pragma once

// The dimensions of a result, from the size arguments of a call.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "host/allocator.h"
#include "host/matrix.h"
#include "host/tx_array.h"

namespace builtins {

// Up to eight dimensions in place, more in host memory.
class Dimensions {
 public:
  // By the host's rules (txGetDims), whose errors propagate: none is 1-by-1, one is a size vector,
  // two or more are one dimension each. Every argument must be numeric or logical.
  explicit Dimensions(std::span<txArray const* const> sizes);
  Dimensions(std::uint64_t rows, std::uint64_t columns) : count_(2), inPlace_{rows, columns} {}

  std::span<std::uint64_t const> view() const noexcept {
    return {heap_ ? heap_.get() : inPlace_.data(), count_};
  }

 private:
  static constexpr std::size_t kInPlace = 8;

  std::size_t count_;
  std::array<std::uint64_t, kInPlace> inPlace_;
  txBuffer<std::uint64_t> heap_;
};

// One numeric size as the shortcuts for native code take it: negative is 0. Errors: NonIntegerInput
// for a fraction, the host's index errors (txCheckIndex).
std::uint64_t toDimension(double size);

// n-by-n and m-by-n from such sizes, the first one checked first.
Dimensions square(double n);
Dimensions rectangle(double m, double n);
// The same as one size argument with these values.
Dimensions dimensionsFrom(matrix::typed_row_vector<double> const& sizes);

}  // namespace builtins
