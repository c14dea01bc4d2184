// The vector form of the polar method equals the scalar one on every instruction set.

#include "tfl_rng/polar.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "tests/support/every_target.h"

namespace {

TEST(PolarKernel, EqualsTheScalarForm) {
  std::mt19937_64 bits(3);
  std::vector<double> uniforms(4200);
  for (double& u : uniforms) u = (static_cast<double>(bits() >> 12) + 0.5) * 0x1p-52;
  // On the circle, in the middle, beside it, and in a row of rejected ones.
  for (std::size_t i = 0; i < 240; i += 40) {
    const double edges[] = {0.5, 0x1p-60, 0.5, 0.5, 0.5 + 0x1p-53, 0.5, 0.999, 0.999};
    std::copy(std::begin(edges), std::end(edges), uniforms.begin() + i);
    std::fill_n(uniforms.begin() + i + 8, 16, 1 - 0x1p-53);
  }
  every_target::run([&] {
    for (std::size_t pairs = 0; pairs < 2000; pairs = pairs < 40 ? pairs + 1 : pairs + 119)
      for (std::size_t at = 0; at < 60; at += 13) {
        double const* const first = uniforms.data() + at;
        std::vector<double> out(2 * pairs + 1, -7), expected(2 * pairs + 1);
        const std::size_t accepted = tfl_rng::polarNormals(first, pairs, out.data());
        ASSERT_EQ(accepted, tfl_rng::reference::polarNormals(first, pairs, expected.data()));
        for (std::size_t i = 0; i < 2 * accepted; ++i) ASSERT_EQ(out[i], expected[i]) << i;
        ASSERT_EQ(out[2 * pairs], -7);
      }
  });
}

}  // namespace
