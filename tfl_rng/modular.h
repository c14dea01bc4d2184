#pragma once

// Powers of the linear maps behind the recurrences, for jumping ahead: 3-by-3 matrices modulo a
// 32-bit number, and polynomials with coefficients modulo 2^64.

#include <array>
#include <cstddef>
#include <cstdint>

namespace tfl_rng {

// Matrices over the integers modulo `m`, where 3 * (m - 1) fits into 64 bits after one reduction.
template <std::uint32_t m>
struct Modular3 {
  using Vector = std::array<std::uint32_t, 3>;
  using Matrix = std::array<Vector, 3>;  // rows

  static constexpr std::uint64_t product(std::uint64_t a, std::uint64_t b) noexcept {
    return a * b % m;
  }

  static constexpr Vector apply(Matrix const& a, Vector const& x) noexcept {
    Vector y{};
    for (std::size_t i = 0; i < 3; ++i) {
      y[i] = static_cast<std::uint32_t>(
          (product(a[i][0], x[0]) + product(a[i][1], x[1]) + product(a[i][2], x[2])) % m);
    }
    return y;
  }

  static constexpr Matrix multiply(Matrix const& a, Matrix const& b) noexcept {
    Matrix c{};
    for (std::size_t j = 0; j < 3; ++j) {
      const Vector column = apply(a, {b[0][j], b[1][j], b[2][j]});
      for (std::size_t i = 0; i < 3; ++i) c[i][j] = column[i];
    }
    return c;
  }

  // a^(2^0), a^(2^1), ..., each the square of the one before.
  template <std::size_t n>
  static constexpr std::array<Matrix, n> squarings(Matrix const& a) noexcept {
    std::array<Matrix, n> powers{};
    powers[0] = a;
    for (std::size_t k = 1; k < n; ++k) powers[k] = multiply(powers[k - 1], powers[k - 1]);
    return powers;
  }
};

// Polynomials modulo t^degree - t^middle - 1, coefficients modulo 2^64, lowest first: t^n tells how
// the term n places on follows from the present ones in x(k + degree) = x(k + middle) + x(k).
template <std::size_t degree, std::size_t middle>
struct ModularTrinomial {
  using Polynomial = std::array<std::uint64_t, degree>;

  static constexpr Polynomial multiply(Polynomial const& a, Polynomial const& b) noexcept {
    std::array<std::uint64_t, 2 * degree - 1> c{};
    for (std::size_t i = 0; i < degree; ++i) {
      for (std::size_t j = 0; j < degree; ++j) c[i + j] += a[i] * b[j];
    }
    // t^k = t^(k - degree + middle) + t^(k - degree), from the top down.
    for (std::size_t k = 2 * degree - 2; k >= degree; --k) {
      c[k - degree + middle] += c[k];
      c[k - degree] += c[k];
    }
    Polynomial remainder{};
    for (std::size_t i = 0; i < degree; ++i) remainder[i] = c[i];
    return remainder;
  }

  // t^(2^0), t^(2^1), ...
  template <std::size_t n>
  static constexpr std::array<Polynomial, n> squarings() noexcept {
    std::array<Polynomial, n> powers{};
    powers[0][1] = 1;
    for (std::size_t k = 1; k < n; ++k) powers[k] = multiply(powers[k - 1], powers[k - 1]);
    return powers;
  }
};

}  // namespace tfl_rng
