#include <gtest/gtest.h>

#include <vector>

#include "tests/support/every_target.h"
#include "tfl_rng/kernels/mcg16807.h"
#include "tfl_rng/kernels/mcg16807_reference.h"

namespace {

using tfl_rng::minimal_standard::Full;
using tfl_rng::minimal_standard::Reduced;
namespace kernels = tfl_rng::minimal_standard;

template <class Precision>
class Mcg16807Kernel : public testing::Test {};

using Precisions = testing::Types<Reduced, Full>;
TYPED_TEST_SUITE(Mcg16807Kernel, Precisions);

// Every count around the vectors and blocks of all targets, and a value behind the end.
TYPED_TEST(Mcg16807Kernel, EqualsTheScalarFormOnEveryTarget) {
  every_target::run([] {
    for (const std::uint32_t word : {1u, 2u, 1144108930u, 0x7ffffffdu, 0x7ffffffeu}) {
      for (std::size_t n = 0; n <= 600; ++n) {
        std::vector<double> expected(n + 1, -1), actual(n + 1, -1);
        const auto last = kernels::reference::fill(TypeParam{}, word, expected.data(), n);
        ASSERT_EQ(kernels::fill(TypeParam{}, word, actual.data(), n), last) << n;
        ASSERT_EQ(actual, expected) << word << " " << n;
      }
    }
  });
}

}  // namespace
