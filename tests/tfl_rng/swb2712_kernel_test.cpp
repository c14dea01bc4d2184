#include <gtest/gtest.h>

#include <vector>

#include "tests/support/every_target.h"
#include "tfl_rng/kernels/swb2712.h"
#include "tfl_rng/kernels/swb2712_reference.h"

namespace {

namespace kernel = tfl_rng::swb2712_kernel;
using tfl_rng::swb2712;
using State = swb2712::State;

State filled(double value, bool borrow) {
  State state{{}, borrow, 7, 0xfffffff0};
  state.lags.fill(value);
  return state;
}

// Ordinary states, equal lags (where borrows pass from draw to draw), and lags off the grid.
std::vector<State> states() {
  std::vector<State> result = {swb2712(0, true).state(),
                               swb2712(12345, true).state(),
                               filled(0.5, false),
                               filled(0.5, true),
                               filled(0x1p-53, true),
                               filled(1 - 0x1p-53, false),
                               filled(0x1.8000000000001p-3, true)};
  State edges = swb2712(1, true).state();
  edges.position = 31;
  edges.borrow = true;
  // The first draws subtract a value from an equal one.
  for (std::size_t i = 0; i < 8; ++i)
    edges.lags[(31 + 20 + i) % 32] = edges.lags[(31 + 5 + i) % 32];
  result.push_back(edges);
  return result;
}

// Every count around vectors and runs, and a value behind the end.
TEST(Swb2712Kernel, EqualsTheScalarFormOnEveryTarget) {
  every_target::run([] {
    for (State const& state : states()) {
      for (std::size_t n = 0; n <= 600; n += n < 120 || n > 500 ? 1 : 7) {
        std::vector<double> expected(n + 1, -1), actual(n + 1, -1);
        State scalar = state, vector = state;
        kernel::reference::fill(scalar, expected.data(), n);
        kernel::fill(vector, actual.data(), n);
        ASSERT_EQ(actual, expected) << n;
        ASSERT_EQ(vector, scalar) << n;
      }
    }
  });
}

}  // namespace
