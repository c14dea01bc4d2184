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

namespace philox = tfl_rng::philox;
namespace threefry = tfl_rng::threefry;

// Blocks of counters, so many draws each, by both forms as fill(counter, key, out, blocks).
template <class Counter, class Key>
void expectSameBlocks(std::vector<Counter> const& counters, std::size_t draws,
                      Key (*keyOf)(std::size_t), auto scalar, auto vector) {
  every_target::run([&] {
    for (std::size_t c = 0; c < counters.size(); ++c) {
      for (std::size_t blocks = 0; blocks < 140; ++blocks) {
        std::vector<double> expected(blocks * draws + 1, kUntouched);
        std::vector<double> values = expected;
        scalar(counters[c], keyOf(blocks), expected.data(), blocks);
        vector(counters[c], keyOf(blocks), values.data(), blocks);
        ASSERT_EQ(values, expected) << c << ", " << blocks;
      }
    }
  });
}

// Runs end where the lowest word wraps, and with it any number of those above.
TEST(PhiloxKernel, EqualsTheScalarForm) {
  expectSameBlocks<uint128, std::uint64_t>(
      {0, 5, (uint128{0x0123456789abcdef} << 64) + 0xfedcba98ffffffe0, (uint128{1} << 64) - 19,
       ~uint128{0} - 7},
      philox::kDraws, [](std::size_t n) { return 0xA0B1C2D3E4F50617 + n; },
      philox::reference::fillBlocks, philox::fillBlocks);
}

TEST(ThreefryKernel, EqualsTheScalarForm) {
  constexpr std::uint64_t full = ~std::uint64_t{0};
  expectSameBlocks<threefry::Block, threefry::Block>(
      {{0, 0, 0, 0}, {5, 6, 7, 8}, {full - 18, 1, 2, 3}, {full - 7, full, full, full}},
      threefry::kDraws,
      [](std::size_t n) {
        return threefry::Block{n, 0xA0B1C2D3E4F50617, full, 1};
      },
      threefry::reference::fillBlocks, threefry::fillBlocks);
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
      mlfg::run(tfl_rng::Stores::cached, table, values.data(), n);
      ASSERT_EQ(values, expected) << n;
      ASSERT_EQ(table, reference) << n;
      table = start;
      mlfg::run(tfl_rng::Stores::cached, table, nullptr, n);
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
