#pragma once

// What the operators share: the numbers that two operands are computed in, and the operands as such
// numbers.

#include "language/operators.h"

namespace language {

using Complex = std::complex<double>;
using ComplexSingle = std::complex<float>;

// The numbers an operation computes with.
enum class Domain { real, single, wide, complex, complexSingle };

struct Typing {
  Domain domain;
  txClassID result;
};

// Raises when `op` is not defined for these classes.
Typing typing(Operator op, txArray const& left, txArray const& right);

// The elements of a full array as numbers of a domain; borrowed where they are stored like that.
template <class T>
class Operand {
 public:
  explicit Operand(txArray const& array) {
    if constexpr (std::is_same_v<T, Complex> || std::is_same_v<T, ComplexSingle>) {
      constexpr txClassID kClass = std::is_same_v<T, Complex> ? txClassDouble : txClassSingle;
      held_ = toComplex(*convertClass(array, kClass));
      data_ = std::as_const(*held_).template dataAs<T>();
    } else if constexpr (std::is_same_v<T, long double>) {
      wide_.resize(array.numel());
      visitElementType(array.classID(), [&]<class From>(From) {
        From const* from = array.dataAs<From>();
        for (std::size_t i = 0; i < wide_.size(); ++i) wide_[i] = castElement<T>(from[i]);
      });
      data_ = wide_.data();
    } else {
      held_ = convertClass(array, embedded_host::kClassOf<T>);
      data_ = std::as_const(*held_).template dataAs<T>();
    }
  }
  T const* data() const { return data_; }

 private:
  txArrayPtr held_;
  std::vector<long double> wide_;
  T const* data_;
};

}  // namespace language
