#pragma once

// Draws of every kind from a stream, whatever state it is in.

#include <algorithm>
#include <bit>
#include <cmath>
#include <vector>

#include "fuzz/fuzz_target.h"
#include "host/except.h"
#include "rng/randstream.h"

namespace fuzz {

using StateBytes = std::vector<std::uint8_t>;

inline StateBytes stateOf(randstream const& stream) {
  StateBytes state(stream.getStateBufLen());
  stream.getStateBuf(state.data(), state.size());
  return state;
}

// Whether both are the same values to the last bit, NaN included.
inline bool sameBits(std::vector<double> const& a, std::vector<double> const& b) {
  return std::ranges::equal(a, b, [](double x, double y) {
    return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y);
  });
}

// Draws n uniforms, n normals by the stream's present method, integers and a permutation. Returns
// them all; nothing after the generator gave up on a degenerate state, which is an error that may
// come from any draw.
inline std::vector<double> drawAll(randstream& stream, std::size_t n) {
  std::vector<double> u(n), z(n), integers(n), permutation(n);
  std::vector<float> singles(n);
  try {
    stream.randuFcn(u.data(), n);
    stream.randuFcn(singles.data(), n);
    stream.randnFcn(z.data(), n, false);
    stream.randiFcn(-3.0, 1e6, integers.data(), n);
    stream.randpermFcn(permutation.data(), n);
    if (n > 0) stream.randkpermFcn(permutation.data(), (n + 1) / 2, static_cast<double>(n));
  } catch (foundation::core::except::AnyException const& error) {
    check(error.GetID() == "TALVOR:RandStream:UnexpectedPluginError", "draws do not fail");
    return {};
  }
  for (double const x : u) check(x > 0 && x < 1, "a uniform lies in (0,1)");
  for (float const x : singles) check(x > 0 && x < 1, "a single uniform lies in (0,1)");
  for (double const x : z) check(std::isfinite(x), "a normal is finite");
  for (double const x : integers)
    check(x >= -3 && x <= 1e6 && x == std::floor(x), "an integer is within its limits");
  for (double const x : permutation)
    check(x >= 1 && x <= static_cast<double>(n), "a permutation holds 1 to n");
  u.insert(u.end(), z.begin(), z.end());
  u.insert(u.end(), integers.begin(), integers.end());
  u.insert(u.end(), permutation.begin(), permutation.end());
  return u;
}

}  // namespace fuzz
