// Jumps of swb2712. With b = 2^53 the last 27 values z, oldest first, and the borrow make the
// number
//
//   s = z_0 + z_1 b + ... + z_26 b^26 - (z_15 + z_16 b + ... + z_26 b^11) + borrow,
//
// which lies between 0 and m = b^27 - b^12 + 1, and a step makes the z and the s of
// b s' = s + z m: s' is s times the inverse of b modulo m. Back from any s come its values as the
// digits z of b s' = z m + s.
// Source: S. Tezuka, P. L'Ecuyer, R. Couture, On the lattice structure of the add-with-carry and
// subtract-with-borrow random number generators, ACM TOMACS 3 (1993) 315-331.

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "tfl_rng/kernels/swb2712_reference.h"
#include "tfl_rng/swb2712.h"
#include "tfl_rng/uint128.h"

namespace tfl_rng {
namespace {

using swb2712_kernel::kFar;
using swb2712_kernel::kNear;
using swb2712_kernel::kUnits;

// A jump takes the time of about as many draws.
constexpr std::uint64_t kDraws = 100'000;
// In tables of equal or extreme values the first z are often 0, which is stored as 2^-53 and so
// leaves the recurrence. None was seen to do that behind the 200th.
constexpr std::uint64_t kDrawnAlways = 1024;

// Numbers of base b, low digit first.
template <std::size_t digits>
using Number = std::array<std::uint64_t, digits>;
using Residue = Number<kFar>;

// a += b * base^shift and a -= b * base^shift. The result is neither negative nor too large.
template <std::size_t n, std::size_t k>
void add(Number<n>& a, Number<k> const& b, std::size_t shift = 0) noexcept {
  std::uint64_t carry = 0;
  for (std::size_t i = shift; i < n; ++i) {
    const std::uint64_t sum = a[i] + (i - shift < k ? b[i - shift] : 0) + carry;
    a[i] = sum % kUnits;
    carry = sum / kUnits;
  }
}
template <std::size_t n, std::size_t k>
void subtract(Number<n>& a, Number<k> const& b, std::size_t shift = 0) noexcept {
  std::uint64_t borrow = 0;
  for (std::size_t i = shift; i < n; ++i) {
    const std::uint64_t less = (i - shift < k ? b[i - shift] : 0) + borrow;
    borrow = a[i] < less;
    a[i] += borrow * kUnits - less;
  }
}

constexpr Residue kModulus = [] {
  Residue m{1};
  for (std::size_t i = kNear; i < kFar; ++i) m[i] = kUnits - 1;
  return m;
}();

bool isLess(Residue const& a, Residue const& b) noexcept {
  return std::lexicographical_compare(a.rbegin(), a.rend(), b.rbegin(), b.rend());
}

// The remainder modulo m. Above b^27 each digit is worth b^12 - 1 of the 27th below it.
Residue reduced(Number<2 * kFar> wide) noexcept {
  Residue low, high;
  for (;;) {
    std::copy_n(wide.begin(), kFar, low.begin());
    std::copy_n(wide.begin() + kFar, kFar, high.begin());
    if (high == Residue{}) break;
    std::fill_n(wide.begin() + kFar, kFar, 0);
    add(wide, high, kNear);
    subtract(wide, high);
  }
  while (!isLess(low, kModulus)) subtract(low, kModulus);
  return low;
}

Residue product(Residue const& a, Residue const& b) noexcept {
  Number<2 * kFar> wide{};
  uint128 carry = 0;
  for (std::size_t k = 0; k < 2 * kFar; ++k) {
    for (std::size_t i = k < kFar ? 0 : k - kFar + 1; i <= k && i < kFar; ++i)
      carry += uint128{a[i]} * b[k - i];
    wide[k] = low64(carry) % kUnits;
    carry /= kUnits;
  }
  return reduced(wide);
}

// b^-n, where the inverse of b is b^11 - b^26.
Residue inversePower(std::uint64_t n) noexcept {
  Residue power{1};
  Residue square = kModulus;
  square[kNear - 1] += 1;
  square[kFar - 1] -= 1;
  for (; n > 0; n /= 2) {
    if (n % 2 != 0) power = product(power, square);
    square = product(square, square);
  }
  return power;
}

// z_0 + ... + z_26 b^26 - (z_15 + ... + z_26 b^11).
Residue numberOf(std::uint64_t const* z) noexcept {
  Residue all;
  std::copy_n(z, kFar, all.begin());
  Number<kNear> recent;
  std::copy_n(z + kFar - kNear, kNear, recent.begin());
  subtract(all, recent);
  return all;
}

// Takes s back one step. Returns the z of that step.
std::uint64_t stepBack(Residue& s) noexcept {
  Number<kFar + 1> wide{};
  add(wide, s, 1);
  std::uint64_t z = std::exchange(wide[kFar], 0);
  add(wide, Number<1>{z}, kNear);
  subtract(wide, Number<1>{z});
  std::copy_n(wide.begin(), kFar, s.begin());
  if (wide[kFar] != 0 || !isLess(s, kModulus)) {
    subtract(s, kModulus);  // what lies above s goes with the borrow
    ++z;
  }
  return z;
}

}  // namespace

errorID swb2712::advance(std::uint64_t n) {
  const bool near = n < kDraws;
  double unread[256];
  for (std::uint64_t left = near ? n : kDrawnAlways; left > 0;) {
    const auto some = static_cast<std::size_t>(std::min<std::uint64_t>(left, std::size(unread)));
    randu(unread, some);
    left -= some;
  }
  if (!near) jump(n - kDrawnAlways);
  return ok;
}

void swb2712::jump(std::uint64_t n) noexcept {
  using swb2712_kernel::reference::toFraction;
  using swb2712_kernel::reference::toUnits;
  std::uint64_t z[kLags];
  const auto oldest = [this](std::size_t i) -> double& {
    return state_.lags[(state_.position + i) % kLags];
  };
  for (std::size_t i = 0; i < kLags; ++i) z[i] = static_cast<std::uint64_t>(toUnits(oldest(i)));
  // Two tables make themselves again: the smallest values without a borrow, because a z of 0 is
  // stored as 2^-53, and the largest with one.
  const bool stands =
      std::ranges::count(z, z[0]) == kLags && z[0] == (state_.borrow ? kUnits - 1 : 1);
  if (!stands) {
    Residue s = numberOf(z + kLags - kFar);
    add(s, Residue{state_.borrow});
    s = product(s, inversePower(n));
    Residue const last = s;
    for (std::size_t i = kLags; i-- > 0;) z[i] = stepBack(s);
    state_.borrow = numberOf(z + kLags - kFar) != last;
  }
  state_.position = static_cast<std::uint32_t>((state_.position + n) % kLags);
  state_.counter += static_cast<std::uint32_t>(n) * swb2712_kernel::kWeylStep;
  for (std::size_t i = 0; i < kLags; ++i) oldest(i) = toFraction(z[i]);
}

}  // namespace tfl_rng
