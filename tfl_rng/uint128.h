#pragma once

// 128-bit counts: positions inside streams pass 2^64.

#include <cstdint>

namespace tfl_rng {

__extension__ using uint128 = unsigned __int128;

constexpr std::uint64_t low64(uint128 value) noexcept { return static_cast<std::uint64_t>(value); }
constexpr std::uint64_t high64(uint128 value) noexcept {
  return static_cast<std::uint64_t>(value >> 64);
}

}  // namespace tfl_rng
