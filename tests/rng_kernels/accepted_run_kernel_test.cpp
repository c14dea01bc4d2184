// The vector form of the ziggurat's fast acceptance equals the scalar one.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "rng/kernels/accepted_run.h"
#include "tests/support/every_target.h"

namespace {

// With candidates of every layer the runs end at every lane. Results go over uniforms that were
// read, never over those still to be read.
TEST(AcceptedRunKernel, EqualsTheScalarForm) {
  constexpr std::size_t kMost = 23;
  std::mt19937_64 bits(6);
  std::vector<double> uniforms(60000);
  for (double& u : uniforms) u = (static_cast<double>(bits() >> 12) + 0.5) * 0x1p-52;
  every_target::run([&] {
    for (std::size_t at = 0; at + 2 * kMost <= uniforms.size(); ++at) {
      const std::size_t most = at % kMost;
      const std::size_t lead = at % 3;  // results stand so far before the uniforms
      double const* const first = uniforms.data() + at;
      double expected[kMost];
      const auto length = ziggurat::reference::acceptedRun(first, most, expected);
      std::vector<double> buffer(lead + 2 * most, -7);
      std::copy_n(first, 2 * most, buffer.begin() + static_cast<std::ptrdiff_t>(lead));
      ASSERT_EQ(ziggurat::acceptedRun(buffer.data() + lead, most, buffer.data()), length) << at;
      ASSERT_TRUE(std::equal(expected, expected + length, buffer.begin())) << at;
      for (std::size_t i = 2 * length; i < 2 * most; ++i)
        ASSERT_EQ(buffer[lead + i], first[i]) << at;
    }
  });
}

// A candidate on its layer's edge is accepted.
TEST(AcceptedRunKernel, EdgeIsInside) {
  every_target::run([] {
    for (int layer = 1; layer < ziggurat::kLayers; ++layer) {
      const double u0 = (layer + 0.5) / ziggurat::kLayers;
      const double right = ziggurat::kX[static_cast<std::size_t>(layer) + 1];
      const double edge = ziggurat::kX[static_cast<std::size_t>(layer)];
      double u1 = (edge / right + 1) / 2;
      while ((2 * u1 - 1) * right > edge) u1 = std::nextafter(u1, 0);
      const double above = std::nextafter(u1, 1);
      std::vector<double> uniforms;
      for (int i = 0; i < 7; ++i) uniforms.insert(uniforms.end(), {u0, u1});
      uniforms.insert(uniforms.end(), {u0, above});
      double out[8];
      ASSERT_EQ(ziggurat::acceptedRun(uniforms.data(), 8, out),
                (2 * above - 1) * right > edge ? 7u : 8u);
    }
  });
}

}  // namespace
