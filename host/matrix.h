#pragma once

// A host row vector of numbers, as native code of the host passes sizes and limits.

#include <cstddef>
#include <initializer_list>
#include <span>
#include <vector>

namespace matrix {

template <class T>
class typed_row_vector {
 public:
  typed_row_vector(std::initializer_list<T> values) : values_(values) {}
  explicit typed_row_vector(std::span<const T> values) : values_(values.begin(), values.end()) {}

  std::size_t size() const noexcept { return values_.size(); }
  T const* data() const noexcept { return values_.data(); }
  T const& operator[](std::size_t index) const noexcept { return values_[index]; }

 private:
  std::vector<T> values_;
};

}  // namespace matrix
