#include <gtest/gtest.h>

#include <vector>

#include "tests/support/every_target.h"
#include "tfl_rng/kernels/shr3cong.h"
#include "tfl_rng/kernels/shr3cong_reference.h"

namespace {

namespace kernels = tfl_rng::shr3cong_kernel;
using State = tfl_rng::shr3cong::State;

template <class Precision>
class Shr3CongKernel : public testing::Test {};

using Precisions = testing::Types<kernels::Reduced, kernels::Full>;
TYPED_TEST_SUITE(Shr3CongKernel, Precisions);

// Every count around blocks and their ends, and a value behind the end.
TYPED_TEST(Shr3CongKernel, EqualsTheScalarFormOnEveryTarget) {
  every_target::run([] {
    for (const State state : {State{362436069, 521288629}, State{0, 1}, State{0xffffffff, 0},
                              State{1, 0x80000000}, State{0, 0xffffffff}}) {
      for (std::size_t n = 0; n <= 100; ++n) {
        std::vector<double> expected(n + 1, -1), actual(n + 1, -1);
        State scalar = state, vector = state;
        kernels::reference::fill(TypeParam{}, scalar, expected.data(), n);
        kernels::fill(TypeParam{}, vector, actual.data(), n);
        ASSERT_EQ(vector, scalar) << n;
        ASSERT_EQ(actual, expected) << state.shiftRegister << " " << n;
      }
    }
  });
}

}  // namespace
