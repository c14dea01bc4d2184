#pragma once

// Integers of more values than the doubles of randi count: 64-bit words made of two draws each.

#include <tvmathrng/cxx20.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include <tvmathrng/values.h>

#include "rng/randstream.h"

namespace tvmathrng::detail {

// Whether limits, or how many values they span, are 2^53 or more.
template <class T>
constexpr bool isWide(Limits<T> limits) {
  constexpr T kLargest = T{1} << 53;
  if constexpr (std::is_signed_v<T>) {
    if (limits.lowest <= -kLargest) return true;
  }
  return limits.highest >= kLargest || limits.highest - limits.lowest >= kLargest - 1;
}

struct Product {
  std::uint64_t high;
  std::uint64_t low;
};
constexpr Product multiply(std::uint64_t a, std::uint64_t b) {
  std::uint64_t const a0 = a & 0xFFFF'FFFF, a1 = a >> 32, b0 = b & 0xFFFF'FFFF, b1 = b >> 32;
  std::uint64_t const middle = a1 * b0 + (a0 * b0 >> 32);
  std::uint64_t const other = a0 * b1 + (middle & 0xFFFF'FFFF);
  return {a1 * b1 + (middle >> 32) + (other >> 32), a * b};
}

// Fills `out` with integers of [lowest, highest], lowest the lower one, each equally likely: the
// high half of a 64-bit word times their number, where the low half is not among the few that would
// favour some (D. Lemire, ACM TOMACS 29 (2019) 3). A word is two draws of randi on 32 bits, the
// high one first. An antithetic stream mirrors the integer within the limits.
template <class T>
void fillWide(randstream& stream, Limits<T> limits, std::span<T> out) {
  auto const lowest = static_cast<std::uint64_t>(limits.lowest);
  auto const highest = static_cast<std::uint64_t>(limits.highest);
  std::uint64_t const count = highest - lowest + 1;  // 0 stands for 2^64
  std::uint64_t const refused = count == 0 ? 0 : (0 - count) % count;
  bool const mirrored = stream.antithetic();
  std::array<std::uint32_t, 256> halves;
  for (std::size_t at = 0; at < out.size();) {
    // Each word makes one integer at most, so that none is drawn that is not used.
    std::size_t const words = std::min(halves.size() / 2, out.size() - at);
    stream.randiFcn(0, 4294967295.0, halves.data(), 2 * words);
    for (std::size_t i = 0; i < words; ++i) {
      std::uint64_t word = std::uint64_t{halves[2 * i]} << 32 | halves[2 * i + 1];
      if (mirrored) word = ~word;
      Product const product = count == 0 ? Product{word, ~std::uint64_t{0}} : multiply(word, count);
      if (product.low < refused) continue;
      out[at++] = static_cast<T>(mirrored ? highest - product.high : lowest + product.high);
    }
  }
}

}  // namespace tvmathrng::detail
