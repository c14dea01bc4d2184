// The vector form of the stream's ziggurat equals the scalar one.

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "rng/kernels/ziggurat.h"
#include "tests/support/every_target.h"

namespace {

using Normals = ziggurat::Run;

// Runs over windows of every length, ends of chunks and wedges at every lane among them. What the
// kernel leaves to its caller at the end, and no more, the scalar form makes here.
TEST(ZigguratKernel, EqualsTheScalarForm) {
  std::mt19937_64 bits(6);
  std::vector<double> uniforms(40000);
  for (double& u : uniforms) u = (static_cast<double>(bits() >> 12) + 0.5) * 0x1p-52;
  every_target::run([&] {
    std::size_t tails = 0;
    for (std::size_t turn = 0, at = 0; at + 1300 < uniforms.size(); ++turn, at += 23) {
      const std::size_t normals = 1 + turn * 37 % 620, n = turn * 101 % 1300;
      double const* const first = uniforms.data() + at;
      std::vector<double> out(normals + 1, -7), expected(normals + 1, -7);
      Normals run(out.data(), normals), scalar(expected.data(), normals);
      const std::size_t whole = ziggurat::reference::normals(scalar, first, n);
      std::size_t read = ziggurat::normals(run, first, n);
      const auto left = static_cast<std::size_t>(run.end - run.out);
      const bool few =
          read + ziggurat::kMostUniformsLeft >= n || left <= ziggurat::kMostNormalsLeft;
      const bool inTail = !few && ziggurat::Candidate(first[read], first[read + 1]).isInTail();
      ASSERT_TRUE(few || inTail) << turn;
      tails += inTail;
      if (read < n) read += ziggurat::reference::normals(run, first + read, n - read);
      ASSERT_EQ(read, whole) << turn;
      ASSERT_EQ(run.planned, scalar.planned) << turn;
      ASSERT_EQ(run.end - run.out, scalar.end - scalar.out) << turn;
      ASSERT_TRUE(std::equal(out.data(), run.out, expected.data())) << turn;
      ASSERT_EQ(out[normals], -7);
    }
    EXPECT_GT(tails, 10U);
  });
}

// A candidate on its layer's edge is accepted at once.
TEST(ZigguratKernel, EdgeIsInside) {
  every_target::run([] {
    for (int layer = 1; layer < ziggurat::kLayers; ++layer) {
      const double u0 = (layer + 0.5) / ziggurat::kLayers;
      const double right = ziggurat::kX[static_cast<std::size_t>(layer) + 1];
      const double edge = ziggurat::kX[static_cast<std::size_t>(layer)];
      double u1 = (edge / right + 1) / 2;
      while ((2 * u1 - 1) * right > edge) u1 = std::nextafter(u1, 0);
      std::vector<double> uniforms;
      for (int i = 0; i < 12; ++i) uniforms.insert(uniforms.end(), {u0, u1});
      double out[12];
      Normals run(out, 12);
      // The last ones may be left to the caller.
      const std::size_t read = ziggurat::normals(run, uniforms.data(), uniforms.size());
      ASSERT_EQ(static_cast<std::size_t>(run.out - out), read / 2);
      ASSERT_GE(run.out - out, 8);
    }
  });
}

}  // namespace
