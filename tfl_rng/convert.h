#pragma once

// Numbers to integers: the named conversions of this library. A plain cast of a value that does not
// fit is undefined and differs between machines; these give the same results everywhere.

#include <cmath>
#include <cstdint>
#include <optional>
#include <type_traits>

namespace tfl_rng {

// From here on every double is a whole number.
inline constexpr double kAllIntegral = 0x1p52;

// The value truncated to a 64-bit signed integer, of that the low 32 bits. NaN and values beyond
// the 64-bit range give 0.
inline std::uint32_t toLow32(double value) noexcept {
  if (!(value >= -0x1p63 && value < 0x1p63)) return 0;
  return static_cast<std::uint32_t>(static_cast<std::int64_t>(value));
}

// A count or index: truncated, exact below 2^64, 2^64-1 from there on; 0 for NaN and negatives.
inline std::uint64_t toUint64(double value) noexcept {
  if (!(value > 0)) return 0;
  if (value >= 0x1p64) return ~std::uint64_t{0};
  return static_cast<std::uint64_t>(value);
}

// A count or index of any class: exact for integers, as above for doubles; nothing for what is
// negative, no whole number or infinite.
template <class T>
std::optional<std::uint64_t> toCount(T value) noexcept {
  if constexpr (std::is_integral_v<T>) {
    if (value < T(0)) return std::nullopt;
    return static_cast<std::uint64_t>(value);
  } else {
    double const number = static_cast<double>(value);
    if (!(number >= 0) || !std::isfinite(number) || number != std::trunc(number))
      return std::nullopt;
    return toUint64(number);
  }
}

// The product of a uniform and a count, truncated toward zero; magnitudes from 2^52 on are whole
// and stay as they are.
inline double truncateProduct(double product) noexcept {
  if (!(std::fabs(product) < kAllIntegral)) return product;
  return static_cast<double>(static_cast<std::int64_t>(product));
}

}  // namespace tfl_rng
