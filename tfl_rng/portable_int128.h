#pragma once

// Integers of 128 bits out of 64-bit ones, for compilers without their own: what tfl_rng/uint128.h
// gives where the target has none. Results are those of the compilers' own, division by 0 apart.

#include <bit>
#include <compare>
#include <concepts>
#include <cstdint>

namespace tfl_rng::portable {

// The whole product of two 64-bit numbers: its low half, and its high half in `high`.
constexpr std::uint64_t product128(std::uint64_t a, std::uint64_t b, std::uint64_t& high) noexcept {
  const std::uint64_t a0 = a & 0xFFFF'FFFF, a1 = a >> 32;
  const std::uint64_t b0 = b & 0xFFFF'FFFF, b1 = b >> 32;
  const std::uint64_t middle = a1 * b0 + (a0 * b0 >> 32);
  const std::uint64_t other = a0 * b1 + (middle & 0xFFFF'FFFF);
  high = a1 * b1 + (middle >> 32) + (other >> 32);
  return a * b;
}

class Uint128 {
 public:
  constexpr Uint128() noexcept = default;
  constexpr Uint128(std::integral auto value) noexcept
      : low_(static_cast<std::uint64_t>(value)), high_(value < decltype(value)(0) ? ~0ULL : 0) {}
  constexpr Uint128(std::uint64_t high, std::uint64_t low) noexcept : low_(low), high_(high) {}

  template <std::integral T>
  constexpr explicit operator T() const noexcept {
    if constexpr (std::same_as<T, bool>) {
      return (low_ | high_) != 0;
    } else {
      return static_cast<T>(low_);
    }
  }
  constexpr std::uint64_t low() const noexcept { return low_; }
  constexpr std::uint64_t high() const noexcept { return high_; }

  constexpr Uint128 operator~() const noexcept { return {~high_, ~low_}; }
  constexpr Uint128 operator-() const noexcept { return ~*this + 1; }

  friend constexpr bool operator==(Uint128, Uint128) noexcept = default;
  friend constexpr auto operator<=>(Uint128 a, Uint128 b) noexcept {
    return a.high_ != b.high_ ? a.high_ <=> b.high_ : a.low_ <=> b.low_;
  }
  friend constexpr Uint128 operator+(Uint128 a, Uint128 b) noexcept {
    const std::uint64_t low = a.low_ + b.low_;
    return {a.high_ + b.high_ + (low < a.low_), low};
  }
  friend constexpr Uint128 operator-(Uint128 a, Uint128 b) noexcept {
    return {a.high_ - b.high_ - (a.low_ < b.low_), a.low_ - b.low_};
  }
  friend constexpr Uint128 operator*(Uint128 a, Uint128 b) noexcept {
    std::uint64_t high = 0;
    const std::uint64_t low = product128(a.low_, b.low_, high);
    return {high + a.low_ * b.high_ + a.high_ * b.low_, low};
  }
  friend constexpr Uint128 operator/(Uint128 a, Uint128 b) noexcept { return divide(a, b); }
  friend constexpr Uint128 operator%(Uint128 a, Uint128 b) noexcept {
    divide(a, b);
    return a;
  }
  friend constexpr Uint128 operator&(Uint128 a, Uint128 b) noexcept {
    return {a.high_ & b.high_, a.low_ & b.low_};
  }
  friend constexpr Uint128 operator|(Uint128 a, Uint128 b) noexcept {
    return {a.high_ | b.high_, a.low_ | b.low_};
  }
  // By 0 to 127.
  friend constexpr Uint128 operator<<(Uint128 a, int by) noexcept {
    if (by >= 64) return {a.low_ << (by - 64), 0};
    return by == 0 ? a : Uint128{a.high_ << by | a.low_ >> (64 - by), a.low_ << by};
  }
  friend constexpr Uint128 operator>>(Uint128 a, int by) noexcept {
    if (by >= 64) return {0, a.high_ >> (by - 64)};
    return by == 0 ? a : Uint128{a.high_ >> by, a.low_ >> by | a.high_ << (64 - by)};
  }
  constexpr Uint128& operator+=(Uint128 b) noexcept { return *this = *this + b; }
  constexpr Uint128& operator-=(Uint128 b) noexcept { return *this = *this - b; }
  constexpr Uint128& operator*=(Uint128 b) noexcept { return *this = *this * b; }
  constexpr Uint128& operator/=(Uint128 b) noexcept { return *this = *this / b; }
  constexpr Uint128& operator|=(Uint128 b) noexcept { return *this = *this | b; }
  constexpr Uint128& operator<<=(int by) noexcept { return *this = *this << by; }
  constexpr Uint128& operator>>=(int by) noexcept { return *this = *this >> by; }

  constexpr Uint128& operator++() noexcept { return *this += 1; }
  constexpr Uint128 operator++(int) noexcept {
    const Uint128 before = *this;
    *this += 1;
    return before;
  }

 private:
  static constexpr int width(Uint128 x) noexcept {
    return static_cast<int>(x.high_ != 0 ? 64 + std::bit_width(x.high_) : std::bit_width(x.low_));
  }
  // The quotient; a becomes the rest. Bit by bit, from the highest that the quotient can have.
  static constexpr Uint128 divide(Uint128& a, Uint128 b) noexcept {
    Uint128 quotient = 0;
    if (a.high_ == 0 && b.high_ == 0) {
      quotient = a.low_ / b.low_;
      a = a.low_ % b.low_;
      return quotient;
    }
    for (int shift = width(a) - width(b); shift >= 0; --shift) {
      quotient <<= 1;
      if (const Uint128 part = b << shift; part <= a) {
        a -= part;
        quotient |= 1;
      }
    }
    return quotient;
  }

  std::uint64_t low_ = 0;
  std::uint64_t high_ = 0;
};

// Two's complement.
class Int128 {
 public:
  constexpr Int128() noexcept = default;
  constexpr Int128(std::integral auto value) noexcept : bits_(value) {}
  constexpr explicit Int128(Uint128 bits) noexcept : bits_(bits) {}
  // A whole number below 2^127 in magnitude.
  constexpr explicit Int128(double value) noexcept {
    const double magnitude = value < 0 ? -value : value;
    const auto high = static_cast<std::uint64_t>(magnitude * 0x1p-64);
    bits_ = {high, static_cast<std::uint64_t>(magnitude - static_cast<double>(high) * 0x1p64)};
    if (value < 0) bits_ = -bits_;
  }

  template <std::integral T>
  constexpr explicit operator T() const noexcept {
    return static_cast<T>(bits_);
  }
  constexpr explicit operator Uint128() const noexcept { return bits_; }

  constexpr Int128 operator-() const noexcept { return Int128(-bits_); }
  friend constexpr bool operator==(Int128, Int128) noexcept = default;
  friend constexpr auto operator<=>(Int128 a, Int128 b) noexcept {
    return a.turned() <=> b.turned();
  }
  friend constexpr Int128 operator+(Int128 a, Int128 b) noexcept {
    return Int128(a.bits_ + b.bits_);
  }
  friend constexpr Int128 operator-(Int128 a, Int128 b) noexcept {
    return Int128(a.bits_ - b.bits_);
  }
  friend constexpr Int128 operator*(Int128 a, Int128 b) noexcept {
    return Int128(a.bits_ * b.bits_);
  }
  friend constexpr Int128 operator/(Int128 a, Int128 b) noexcept {
    const Int128 magnitude(a.magnitude() / b.magnitude());
    return (a < 0) != (b < 0) ? -magnitude : magnitude;
  }
  friend constexpr Int128 operator<<(Int128 a, int by) noexcept { return Int128(a.bits_ << by); }
  constexpr Int128& operator+=(Int128 b) noexcept { return *this = *this + b; }

 private:
  // In the order of the numbers.
  constexpr Uint128 turned() const noexcept { return bits_ + Uint128{1ULL << 63, 0}; }
  constexpr Uint128 magnitude() const noexcept { return *this < 0 ? -bits_ : bits_; }

  Uint128 bits_;
};

}  // namespace tfl_rng::portable
