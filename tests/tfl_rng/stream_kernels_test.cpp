// The kernels of the generators with streams equal their scalar forms, bit for bit, on every
// instruction set.

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/every_target.h"
#include "tfl_rng/kernels/philox4x32.h"
#include "tfl_rng/kernels/philox4x32_reference.h"

namespace {

using tfl_rng::uint128;

constexpr double kUntouched = -7;

TEST(PhiloxKernel, EqualsTheScalarForm) {
  namespace philox = tfl_rng::philox;
  // Runs end where the lowest word wraps, and with it any number of those above.
  const uint128 counters[] = {0,
                              5,
                              (uint128{0x0123456789abcdef} << 64) + 0xfedcba98ffffffe0,
                              (uint128{1} << 64) - 19,
                              ~uint128{0} - 7};
  every_target::run([&] {
    for (const uint128 counter : counters) {
      for (std::size_t count = 0; count < 140; ++count) {
        const std::uint64_t key = 0xA0B1C2D3E4F50617 + count;
        std::vector<double> expected(count * philox::kDraws + 1, kUntouched);
        std::vector<double> values = expected;
        philox::reference::fillBlocks(counter, key, expected.data(), count);
        philox::fillBlocks(counter, key, values.data(), count);
        ASSERT_EQ(values, expected) << tfl_rng::low64(counter) << ", " << count;
      }
    }
  });
}

}  // namespace
