#pragma once

// What the operators share: the numbers that two operands are computed in, and the operands as such
// numbers.

#include "embedded_host/interrupt.h"
#include "language/exact.h"
#include "language/operators.h"

namespace language {

using Complex = std::complex<double>;
using ComplexSingle = std::complex<float>;

// The numbers an operation computes with; those of 64-bit integers, mixed ones too, are exact.
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
    } else {
      held_ = convertClass(array, embedded_host::kClassOf<T>);
    }
    data_ = std::as_const(*held_).template dataAs<T>();
  }
  T const* data() const { return data_; }

 private:
  txArrayPtr held_;
  T const* data_;
};

// Of a complex array the real parts; where the imaginary one counts, a number that has it is none.
template <>
class Operand<Exact> {
 public:
  explicit Operand(txArray const& array, bool imaginaryCounts = false) : numbers_(array.numel()) {
    visitElementType(array.classID(), [&]<class From>(From) {
      From const* from = array.dataAs<From>();
      std::size_t const step = array.isComplex() ? 2 : 1;
      embedded_host::each(numbers_.size(), [&](std::size_t i) {
        if constexpr (std::is_same_v<From, float>) {
          numbers_[i] = exactOf(double{from[i * step]});
        } else {
          numbers_[i] = exactOf(from[i * step]);
        }
        if (imaginaryCounts && step == 2 && from[2 * i + 1] != From(0)) numbers_[i] = exactOf(NAN);
      });
    });
  }
  Exact const* data() const { return numbers_.data(); }

 private:
  std::vector<Exact> numbers_;
};

// Operators with a 64-bit integer on one side, by exact arithmetic; powers are in powers.h.
txArrayPtr computeWide(Operator op, txArray const& left, txArray const& right, txClassID target);
txArrayPtr compareWide(Operator op, txArray const& left, txArray const& right);

}  // namespace language
