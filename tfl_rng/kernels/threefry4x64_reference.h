#pragma once

// The scalar form of the Threefry kernel: what it must equal, and what the baseline runs.

#include <bit>

#include "tfl_rng/kernels/threefry4x64.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng::threefry::reference {

template <int rotation>
void mix(std::uint64_t& a, std::uint64_t& b) noexcept {
  a += b;
  b = std::rotl(b, rotation) ^ a;
}

// Words in variables of their own: compilers make slow vectors of an array.
struct Lane {
  std::uint64_t x0, x1, x2, x3;

  [[gnu::always_inline]] void inject(Block const& key) noexcept {
    x0 += key[0];
    x1 += key[1];
    x2 += key[2];
    x3 += key[3];
  }

  // The rounds first to first + 3. The second words trade places from round to round.
  template <int first>
  [[gnu::always_inline]] void fourRounds() noexcept {
    mix<kRotations[first][0]>(x0, x1), mix<kRotations[first][1]>(x2, x3);
    mix<kRotations[first + 1][0]>(x0, x3), mix<kRotations[first + 1][1]>(x2, x1);
    mix<kRotations[first + 2][0]>(x0, x1), mix<kRotations[first + 2][1]>(x2, x3);
    mix<kRotations[first + 3][0]>(x0, x3), mix<kRotations[first + 3][1]>(x2, x1);
  }
};

inline Block encrypt(Block const& counter, Injections const& keys) noexcept {
  Lane lane{counter[0], counter[1], counter[2], counter[3]};
  lane.inject(keys[0]);
  lane.fourRounds<0>();
  lane.inject(keys[1]);
  lane.fourRounds<4>();
  lane.inject(keys[2]);
  lane.fourRounds<0>();
  lane.inject(keys[3]);
  lane.fourRounds<4>();
  lane.inject(keys[4]);
  lane.fourRounds<0>();
  lane.inject(keys[5]);
  return {lane.x0, lane.x1, lane.x2, lane.x3};
}

inline void fillBlocks(Block counter, Block const& key, double* out, std::size_t count) {
  const Injections keys = injections(key);
  for (; count > 0; --count, counter = plus(counter, 1), out += kDraws) {
    const Block block = encrypt(counter, keys);
    for (std::size_t i = 0; i < kDraws; ++i) out[i] = open52(block[i]);
  }
}

}  // namespace tfl_rng::threefry::reference
