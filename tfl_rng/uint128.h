#pragma once

// 128-bit integers: positions inside streams pass 2^64, and so do products of 64-bit numbers. The
// one place that knows whether the compiler has them.

#include <cstdint>

#include "tfl_rng/portable_int128.h"

namespace tfl_rng {

#ifdef __SIZEOF_INT128__
__extension__ using uint128 = unsigned __int128;
__extension__ using int128 = __int128;
#else
using uint128 = portable::Uint128;
using int128 = portable::Int128;
#endif

constexpr std::uint64_t low64(uint128 value) noexcept { return static_cast<std::uint64_t>(value); }
constexpr std::uint64_t high64(uint128 value) noexcept {
  return static_cast<std::uint64_t>(value >> 64);
}

}  // namespace tfl_rng
