// Jumps of the generators without streams, which any n below 2^64 may be asked of: where drawing
// can follow they end where it does, beyond that they add up.

#include <gtest/gtest.h>

#include <algorithm>
#include <concepts>
#include <random>

#include "tests/support/cores.h"
#include "tests/support/every_target.h"
#include "tfl_rng/kernels/exclusive_or.h"

namespace {

using testing_support::draw;
using testing_support::setState;
using testing_support::stateOf;

template <class Core>
class SingleCore : public testing::Test {};

#define TV_SINGLE_Single(core) , tfl_rng::core
#define TV_SINGLE_Substreams(core)
using SingleCores = testing_support::After<void
#define TFL_GENERATOR(name, core, otherSpelling, family, ...) TV_SINGLE_##family(core)
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
                                           >::Types;
#undef TV_SINGLE_Substreams
#undef TV_SINGLE_Single

TYPED_TEST_SUITE(SingleCore, SingleCores);

// States that seeding does not reach.
template <class Core>
Core unusual(std::mt19937_64& bits, bool fullPrecision) {
  Core core(static_cast<std::uint32_t>(bits()), fullPrecision);
  auto state = stateOf(core);
  if constexpr (std::same_as<Core, tfl_rng::swb2712>) {
    const double same[] = {0x1p-53, 1 - 0x1p-53, 0.3, 0};
    const double value = same[bits() % 4];
    const bool all = bits() % 2;
    for (std::size_t i = 0; i < Core::kLags; ++i)
      if (value != 0 && (all || bits() % 16 != 0)) state[i] = value;
    state[32] = bits() % 2 ? 0x1p-53 : 0;
    state[33] = static_cast<double>(bits() % 32) * 0x1p-52;
  } else if constexpr (Core::kStateWords > 600) {  // a vector and a position
    for (auto& word : state) word = static_cast<std::uint32_t>(bits());
    if constexpr (std::same_as<Core, tfl_rng::mt19937ar>)
      state.back() = static_cast<std::uint32_t>(bits() % 625);
    else
      state[2 * Core::kOutputs + 4] = static_cast<std::uint32_t>(bits() % 500);
  }
  setState(core, state);
  return core;
}

TYPED_TEST(SingleCore, AdvanceEqualsDrawing) {
  std::mt19937_64 bits(1);
  for (int i = 0; i < 40; ++i) {
    const bool full = i % 2;
    for (std::uint64_t n : {0, 1, 2, 31, 311, 312, 313, 382, 624, 625, 99'999, 100'000, 100'001}) {
      TypeParam drawn = unusual<TypeParam>(bits, full);
      draw(drawn, n % 3);
      TypeParam moved = drawn;
      draw(drawn, n);
      ASSERT_EQ(moved.advance(n), tfl_rng::ok);
      ASSERT_EQ(draw(moved, 1000), draw(drawn, 1000)) << n;
      ASSERT_EQ(stateOf(moved), stateOf(drawn)) << n;
    }
  }
}

// Far enough that every generator jumps instead of drawing.
TYPED_TEST(SingleCore, FarAdvanceEqualsDrawing) {
  std::mt19937_64 bits(2);
  for (bool full : {true, false}) {
    const std::uint64_t n = 130'000'000 + bits() % 1000;
    TypeParam drawn = unusual<TypeParam>(bits, full);
    TypeParam moved = drawn;
    std::vector<double> some(1 << 16);
    for (std::uint64_t left = n; left > 0; left -= std::min<std::uint64_t>(left, some.size()))
      drawn.randu(some.data(), std::min<std::uint64_t>(left, some.size()));
    moved.advance(n);
    ASSERT_EQ(stateOf(moved), stateOf(drawn)) << n;
  }
}

TYPED_TEST(SingleCore, AdvancesAdd) {
  const std::uint64_t most = ~std::uint64_t{0};
  std::mt19937_64 bits(3);
  for (bool full : {true, false}) {
    for (std::uint64_t a : {std::uint64_t{12345}, std::uint64_t{1} << 40, most / 3, most - 7}) {
      const std::uint64_t b = std::min(bits(), most - a);
      TypeParam once = unusual<TypeParam>(bits, full);
      TypeParam twice = once;
      once.advance(a + b);
      twice.advance(a);
      twice.advance(b);
      EXPECT_EQ(stateOf(twice), stateOf(once)) << a << " + " << b;
    }
  }
}

TEST(ExclusiveOrKernel, AddsBytesOnEveryTarget) {
  std::mt19937 bits(4);
  std::vector<unsigned char> in(200), start(200);
  for (auto& byte : in) byte = static_cast<unsigned char>(bits());
  for (auto& byte : start) byte = static_cast<unsigned char>(bits());
  every_target::run([&] {
    for (std::size_t n = 0; n < 190; ++n) {
      auto out = start;
      tfl_rng::exclusiveOr(out.data() + 3, in.data() + 1, n);
      for (std::size_t i = 0; i < out.size(); ++i) {
        const bool inside = i >= 3 && i < 3 + n;
        ASSERT_EQ(out[i], inside ? start[i] ^ in[i - 2] : start[i]) << n << ", " << i;
      }
    }
  });
}

}  // namespace
