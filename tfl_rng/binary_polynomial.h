#pragma once

// Polynomials over the field of two elements, with which linear generators jump: the state n steps
// on is g(F) of the present one, where F is the step and g the remainder of x^n modulo a polynomial
// that annihilates F.
// Source: H. Haramoto, M. Matsumoto, T. Nishimura, F. Panneton, P. L'Ecuyer, Efficient jump ahead
// for F2-linear random number generators, INFORMS Journal on Computing 20 (2008) 385-390.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "tfl_rng/kernels/exclusive_or.h"
#include "tfl_rng/uint128.h"

namespace tfl_rng {

// Coefficients, 64 a word: bit i of the whole is that of x^i.
using BinaryPolynomial = std::vector<std::uint64_t>;

inline bool coefficient(BinaryPolynomial const& p, std::size_t i) noexcept {
  return p[i / 64] >> i % 64 & 1;
}

// The polynomial of least degree that annihilates a sequence of bits, which must be at least twice
// as long as that degree.
// Source: J. L. Massey, Shift-register synthesis and BCH decoding, IEEE Transactions on Information
// Theory 15 (1969) 122-127.
BinaryPolynomial minimalPolynomial(std::vector<bool> const& sequence);

// Arithmetic modulo one polynomial. Keeps it at the 64 places inside a word: 160 KB for the degree
// of a twister.
class BinaryModulus {
 public:
  explicit BinaryModulus(BinaryPolynomial const& polynomial);

  std::size_t degree() const noexcept { return degree_; }
  // The remainder of x^n.
  BinaryPolynomial powerOfX(uint128 n) const;

 private:
  // Clears the coefficients of `p` from x^top down to the degree.
  void reduce(BinaryPolynomial& p, std::size_t top) const noexcept;

  std::size_t degree_;
  std::array<BinaryPolynomial, 64> shifted_;  // the polynomial times x^0 to x^63
};

// out[j] becomes the sum of sequence[i + j] over the i < degree whose coefficient is 1, for
// j < count: with the remainder of x^n, what a sequence of that characteristic brings n places on.
template <class Word>
void combine(BinaryPolynomial const& remainder, std::size_t degree, Word const* sequence, Word* out,
             std::size_t count) noexcept {
  std::fill_n(out, count, Word{});
  for (std::size_t i = 0; i < degree; ++i)
    if (coefficient(remainder, i)) exclusiveOr(out, sequence + i, count * sizeof(Word));
}

}  // namespace tfl_rng
