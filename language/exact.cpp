#include "language/exact.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "tfl_rng/plain_arithmetic.h"  // IWYU pragma: keep
#include "tfl_rng/uint128.h"

namespace language {

namespace {

using tfl_rng::int128;
using tfl_rng::uint128;

using enum Exact::Kind;

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
constexpr Whole kNothing{0, false};

// magnitude * 2^exponent, rounded.
Whole rounded(uint128 magnitude, int exponent, bool negative) {
  if (magnitude == 0 || exponent < -128) return kNothing;
  if (exponent < 0) {
    int const dropped = -exponent;
    bool const up = (magnitude >> (dropped - 1) & 1) != 0;
    magnitude = (dropped == 128 ? 0 : magnitude >> dropped) + up;
    exponent = 0;
  }
  bool const fits = exponent < 64 && magnitude >> (64 - exponent) == 0;
  return {fits ? static_cast<std::uint64_t>(magnitude << exponent) : kMost, negative};
}

Whole rounded(Exact const& value) {
  if (value.kind == notANumber) return kNothing;
  if (value.kind == infinite) return {kMost, value.negative};
  return rounded(value.magnitude, value.exponent, value.negative);
}

bool isZero(Exact const& value) { return value.kind == finite && value.magnitude == 0; }

// value * 2^shift / divisor; `overflow` tells that the quotient has more than these 64 bits.
struct Division {
  std::uint64_t quotient;
  std::uint64_t rest;
  bool overflow;
};
Division divide(std::uint64_t value, int shift, std::uint64_t divisor) {
  Division done{value / divisor, value % divisor, false};
  while (shift > 0) {
    int const step = std::min(shift, 63);
    uint128 const shifted = uint128{done.rest} << step;
    uint128 const quotient = (uint128{done.quotient} << step) + shifted / divisor;
    done.overflow = done.overflow || quotient >> 64 != 0;
    done.quotient = static_cast<std::uint64_t>(quotient);
    done.rest = static_cast<std::uint64_t>(shifted % divisor);
    shift -= step;
  }
  return done;
}

int width(Exact const& value) { return static_cast<int>(std::bit_width(value.magnitude)); }

// |value| in quarters; a rest below a quarter makes it odd, so that sums with a whole number round
// as the exact ones. Large values end where every class does.
int128 quarters(Exact const& value) {
  constexpr int kLarge = 100;
  uint128 const shifted = uint128{value.magnitude} << 2;
  if (value.exponent > 0) {
    bool const large = value.exponent + width(value) > kLarge;
    return static_cast<int128>(large ? uint128{1} << kLarge : shifted << value.exponent);
  }
  int const dropped = -value.exponent;
  uint128 const kept = dropped > 127 ? 0 : shifted >> dropped;
  bool const rest = dropped > 127 ? value.magnitude != 0 : kept << dropped != shifted;
  return static_cast<int128>(kept | rest);
}

}  // namespace

Exact exactOf(double value) {
  bool const negative = std::signbit(value);
  if (std::isnan(value)) return {0, 0, negative, notANumber};
  if (std::isinf(value)) return {0, 0, negative, infinite};
  if (value == 0) return {0, 0, negative};
  int exponent = 0;
  double const fraction = std::frexp(std::fabs(value), &exponent);
  auto const magnitude = static_cast<std::uint64_t>(std::ldexp(fraction, 53));
  exponent -= 53;
  int const zeros = std::min(std::countr_zero(magnitude), std::max(-exponent, 0));
  return {magnitude >> zeros, exponent + zeros, negative};
}

double nearestDouble(Exact const& value) {
  double const magnitude = value.kind == notANumber ? NAN
                           : value.kind == infinite
                               ? HUGE_VAL
                               : std::ldexp(static_cast<double>(value.magnitude), value.exponent);
  return value.negative ? -magnitude : magnitude;
}

std::partial_ordering compare(Exact const& left, Exact const& right) {
  if (left.kind == notANumber || right.kind == notANumber) return std::partial_ordering::unordered;
  auto const sign = [](Exact const& x) { return isZero(x) ? 0 : x.negative ? -1 : 1; };
  if (sign(left) != sign(right) || sign(left) == 0) return sign(left) <=> sign(right);
  Exact const& a = left.negative ? right : left;  // the order of magnitudes turns with the sign
  Exact const& b = left.negative ? left : right;
  if (a.kind == infinite || b.kind == infinite) {
    return (a.kind == infinite) <=> (b.kind == infinite);
  }
  if (width(a) + a.exponent != width(b) + b.exponent) {
    return width(a) + a.exponent <=> width(b) + b.exponent;
  }
  return a.magnitude << (64 - width(a)) <=> b.magnitude << (64 - width(b));
}

Whole operator*(Whole left, Whole right) {
  return rounded(uint128{left.magnitude} * right.magnitude, 0, left.negative != right.negative);
}

Whole product(Exact const& left, Exact const& right) {
  bool const negative = left.negative != right.negative;
  if (left.kind == notANumber || right.kind == notANumber) return kNothing;
  if (isZero(left) || isZero(right)) return kNothing;  // of infinity: NaN
  if (left.kind == infinite || right.kind == infinite) return {kMost, negative};
  return rounded(uint128{left.magnitude} * right.magnitude, left.exponent + right.exponent,
                 negative);
}

Whole quotient(Exact const& left, Exact const& right) {
  bool const negative = left.negative != right.negative;
  if (left.kind == notANumber || right.kind == notANumber) return kNothing;
  if (right.kind == infinite || isZero(left)) return kNothing;
  if (left.kind == infinite || isZero(right)) return {kMost, negative};
  int const shift = left.exponent - right.exponent;
  if (shift < 0) {
    if (shift < -64) return kNothing;  // less than a half
    uint128 const divisor = uint128{right.magnitude} << -shift;
    uint128 const rest = left.magnitude % divisor;
    return rounded(left.magnitude / divisor + (rest >= divisor - rest), 0, negative);
  }
  Division const done = divide(left.magnitude, shift, right.magnitude);
  if (done.overflow) return {kMost, negative};
  bool const up = done.rest >= right.magnitude - done.rest;
  return rounded(uint128{done.quotient} + up, 0, negative);
}

Whole sum(Exact const& left, Exact const& right) {
  if (left.kind == notANumber || right.kind == notANumber) return kNothing;
  if (left.kind == infinite) return rounded(left);  // the other is whole
  if (right.kind == infinite) return rounded(right);
  int128 const total = (left.negative ? -quarters(left) : quarters(left)) +
                       (right.negative ? -quarters(right) : quarters(right));
  return rounded(static_cast<uint128>(total < 0 ? -total : total), -2, total < 0);
}

Whole wholePower(Exact const& base, Exact const& exponent) {
  bool const odd = exponent.exponent == 0 && exponent.magnitude % 2 == 1;
  bool const negative = base.negative && odd;
  if (exponent.magnitude == 0) return {1, false};
  if (base.magnitude == 0) return {exponent.negative ? kMost : 0, false};
  if (base.magnitude == 1 && base.exponent == 0) return {1, negative};
  Whole const factor = rounded(base);
  bool const one = exponent.magnitude == 1 && exponent.exponent == 0;
  if (exponent.negative) return {factor.magnitude == 2 && one ? 1u : 0u, negative};  // 1/2 is up
  if (exponent.exponent > 0 || exponent.magnitude > 64) return {kMost, negative};    // 2^65 and up
  Whole power{1, negative};
  for (std::uint64_t i = 0; i < exponent.magnitude; ++i)
    power = power * Whole{factor.magnitude, false};
  return power;
}

namespace {

// What a division of magnitudes leaves, and what that lacks to the divisor, both * 2^exponent.
struct Rest {
  std::uint64_t rest;
  uint128 complement;
  int exponent;
};
Rest restOf(Exact const& dividend, Exact const& divisor) {
  int const shift = dividend.exponent - divisor.exponent;
  if (shift >= 0) {
    std::uint64_t const rest = divide(dividend.magnitude, shift, divisor.magnitude).rest;
    return {rest, divisor.magnitude - rest, divisor.exponent};
  }
  uint128 const widened = uint128{divisor.magnitude} << -shift;
  auto const rest = static_cast<std::uint64_t>(dividend.magnitude % widened);
  return {rest, widened - rest, dividend.exponent};
}

// A dividend that is nothing to the divisor: a fraction far below a half, or of one that no class
// holds.
bool isDwarfed(Exact const& dividend, Exact const& divisor) {
  return divisor.kind == infinite || divisor.exponent - dividend.exponent >= 64;
}

}  // namespace

Whole remainder(Exact const& dividend, Exact const& divisor) {
  if (divisor.kind == notANumber || dividend.kind != finite) return kNothing;
  if (isZero(divisor) || isDwarfed(dividend, divisor)) return rounded(dividend);
  Rest const rest = restOf(dividend, divisor);
  return rounded(rest.rest, rest.exponent, dividend.negative);
}

Whole modulus(Exact const& dividend, Exact const& divisor) {
  bool const sameSide = dividend.negative == divisor.negative;
  if (divisor.kind == notANumber || dividend.kind != finite) return kNothing;
  if (isZero(divisor) || isZero(dividend) || sameSide) return remainder(dividend, divisor);
  if (isDwarfed(dividend, divisor)) return rounded(divisor);
  Rest const rest = restOf(dividend, divisor);
  return rest.rest == 0 ? kNothing : rounded(rest.complement, rest.exponent, divisor.negative);
}

}  // namespace language
