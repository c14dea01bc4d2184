#pragma once

// The scalar form of the Philox kernel: what it must equal, and what the baseline runs.

#include <array>

#include "tfl_rng/kernels/philox4x32.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng::philox::reference {

using Words = std::array<std::uint32_t, 4>;

inline Words encrypt(Words c, std::uint32_t k0, std::uint32_t k1) noexcept {
#pragma GCC unroll 10
  for (int round = 0; round < kRounds; ++round) {
    const std::uint64_t p0 = std::uint64_t{kMultiplier0} * c[0];
    const std::uint64_t p1 = std::uint64_t{kMultiplier1} * c[2];
    c = {static_cast<std::uint32_t>(p1 >> 32) ^ c[1] ^ k0, static_cast<std::uint32_t>(p1),
         static_cast<std::uint32_t>(p0 >> 32) ^ c[3] ^ k1, static_cast<std::uint32_t>(p0)};
    k0 += kWeyl0;
    k1 += kWeyl1;
  }
  return c;
}

inline Words split(uint128 counter) noexcept {
  return {static_cast<std::uint32_t>(counter), static_cast<std::uint32_t>(counter >> 32),
          static_cast<std::uint32_t>(counter >> 64), static_cast<std::uint32_t>(counter >> 96)};
}

inline void fillBlocks(uint128 counter, std::uint64_t key, double* out, std::size_t count) {
  for (; count > 0; --count, ++counter, out += kDraws) {
    const Words block = encrypt(split(counter), static_cast<std::uint32_t>(key),
                                static_cast<std::uint32_t>(key >> 32));
    out[0] = open52(std::uint64_t{block[1]} << 32 | block[0]);
    out[1] = open52(std::uint64_t{block[3]} << 32 | block[2]);
  }
}

}  // namespace tfl_rng::philox::reference
