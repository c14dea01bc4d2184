// The kernels of the generators with streams equal their scalar forms, bit for bit, on every
// instruction set.

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/every_target.h"
#include "tfl_rng/kernels/mlfg6331.h"
#include "tfl_rng/kernels/mlfg6331_reference.h"
#include "tfl_rng/kernels/philox4x32.h"
#include "tfl_rng/kernels/philox4x32_reference.h"
#include "tfl_rng/kernels/threefry4x64.h"
#include "tfl_rng/kernels/threefry4x64_reference.h"
#include "tfl_rng/splitmix.h"

namespace {

using tfl_rng::uint128;

constexpr double kUntouched = -7;

TEST(PhiloxKernel, EqualsTheScalarForm) {
  namespace philox = tfl_rng::philox;
  // Runs end where the lowest word wraps, and with it any number of those above.
  const uint128 counters[] = {0, 5, (uint128{0x0123456789abcdef} << 64) + 0xfedcba98ffffffe0,
                              (uint128{1} << 64) - 19, ~uint128{0} - 7};
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

TEST(ThreefryKernel, EqualsTheScalarForm) {
  namespace threefry = tfl_rng::threefry;
  constexpr std::uint64_t full = ~std::uint64_t{0};
  const threefry::Block counters[] = {
      {0, 0, 0, 0}, {5, 6, 7, 8}, {full - 18, 1, 2, 3}, {full - 7, full, full, full}};
  every_target::run([&] {
    for (auto const& counter : counters) {
      for (std::size_t count = 0; count < 140; ++count) {
        const threefry::Block key = {count, 0xA0B1C2D3E4F50617, full, 1};
        std::vector<double> expected(count * threefry::kDraws + 1, kUntouched);
        std::vector<double> values = expected;
        threefry::reference::fillBlocks(counter, key, expected.data(), count);
        threefry::fillBlocks(counter, key, values.data(), count);
        ASSERT_EQ(values, expected) << counter[0] << ", " << count;
      }
    }
  });
}

namespace mlfg = tfl_rng::mlfg6331;

mlfg::Terms randomTerms(std::uint64_t seed, std::uint64_t lowestBits) {
  tfl_rng::SplitMix64 source(seed);
  mlfg::Terms terms;
  for (auto& term : terms) term = source.next() | lowestBits;
  return terms;
}

TEST(MlfgKernel, RunEqualsTheScalarForm) {
  every_target::run([&] {
    for (std::size_t n = 0; n < 300; ++n) {
      const mlfg::Terms start = randomTerms(n, 1);
      std::vector<double> expected(n + 1, kUntouched);
      std::vector<double> values = expected;
      mlfg::Terms reference = start;
      mlfg::reference::run(reference, expected.data(), n);
      mlfg::Terms table = start;
      mlfg::run(table, values.data(), n);
      ASSERT_EQ(values, expected) << n;
      ASSERT_EQ(table, reference) << n;
      table = start;
      mlfg::run(table, nullptr, n);
      ASSERT_EQ(table, reference) << n << " steps without draws";
    }
  });
}

TEST(MlfgKernel, ApplyEqualsTheScalarForm) {
  every_target::run([&] {
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
      const mlfg::Terms coefficients = randomTerms(seed + 100, 0);
      mlfg::Terms expected = randomTerms(seed, 0);
      mlfg::Terms terms = expected;
      mlfg::reference::apply(coefficients, expected);
      mlfg::apply(coefficients, terms);
      ASSERT_EQ(terms, expected);
    }
  });
}

}  // namespace
