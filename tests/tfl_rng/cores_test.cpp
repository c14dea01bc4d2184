// What holds for every core generator: requests of any sizes give one sequence, states restore it,
// and normals do not depend on the precision mode.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <vector>

#include "plugin_rng/large_results.h"
#include "tests/support/cores.h"
#include "tests/support/every_target.h"

namespace {

using namespace testing_support;

// The place of a virtual operation in the table of its class, as pointers to members tell it in the
// C++ ABI of all our compilers.
template <class Operation>
std::ptrdiff_t slotOf(Operation operation) {
  const auto offset = std::bit_cast<std::array<std::ptrdiff_t, 2>>(operation)[0];
  return offset / static_cast<std::ptrdiff_t>(sizeof(void*));
}

// Other builds of the cores may stand in for ours. Both destructors come first.
TEST(CoreBases, OperationsStandInTheirAgreedOrder) {
  using Plain = tfl_rng::CoreRNG;
  using Normal = tfl_rng::CoreNormalRNG;
  using Stream = tfl_rng::CoreStreamRNG;
  EXPECT_EQ((std::vector{slotOf(&Plain::reset), slotOf(&Plain::randu), slotOf(&Normal::randn)}),
            (std::vector<std::ptrdiff_t>{2, 3, 4}));
  EXPECT_EQ((std::vector{slotOf(&Stream::advance), slotOf(&Stream::setSubstream),
                         slotOf(&Stream::getNumStreams), slotOf(&Stream::getNumSubstreams),
                         slotOf(&Stream::getLog2StreamLen), slotOf(&Stream::getLog2SubstreamLen)}),
            (std::vector<std::ptrdiff_t>{4, 5, 6, 7, 8, 9}));
}

template <class Core>
class AnyCore : public testing::Test {
 protected:
  using Fill = void (Core::*)(double*, std::size_t);

  static std::vector<Fill> fills() {
    std::vector<Fill> all = {&Core::randu};
    // The polar method of mcg16807 drops the second value of an odd count.
    if constexpr (kHasNormals<Core> && !std::is_same_v<Core, tfl_rng::mcg16807>)
      all.push_back(&Core::randn);
    return all;
  }
};
TYPED_TEST_SUITE(AnyCore, Cores);

// Sizes around the vector lengths of kernels and the lengths of batches and blocks, several times
// round, so that every parity of a position occurs.
std::vector<std::size_t> pieceSizes() {
  std::vector<std::size_t> sizes;
  for (std::size_t n = 0; n < 40; ++n) sizes.push_back(n);
  for (std::size_t n : {62,  63,  64,  100, 255, 257, 311,  312, 313,  381,
                        382, 383, 623, 624, 625, 764, 1247, 1,   5000, 3})
    sizes.push_back(n);
  return sizes;
}

TYPED_TEST(AnyCore, RequestsOfAnySizesGiveOneSequence) {
  for (bool full : {true, false}) {
    for (auto fill : this->fills()) {
      auto parts = makeCore<TypeParam>(42, full), whole = makeCore<TypeParam>(42, full);
      // In reduced precision a first odd draw leaves the normals an odd position.
      draw(parts, 1);
      draw(whole, 1);
      std::vector<double> pieces;
      for (std::size_t n : pieceSizes()) {
        std::vector<double> piece(n + 1, -7);
        (parts.*fill)(piece.data(), n);
        ASSERT_EQ(piece.back(), -7) << "written past the end of " << n;
        pieces.insert(pieces.end(), piece.begin(), piece.end() - 1);
      }
      std::vector<double> expected(pieces.size());
      (whole.*fill)(expected.data(), expected.size());
      EXPECT_EQ(pieces, expected);
      EXPECT_EQ(stateOf(parts), stateOf(whole));
    }
  }
}

// From every place within a cache line, with nothing touched around the results.
TYPED_TEST(AnyCore, StreamingGivesTheSameNumbers) {
  every_target::run([] {
    for (bool full : {true, false}) {
      auto core = makeCore<TypeParam>(9, full), streaming = core;
      for (std::size_t n = 0; n < 800; n += n < 40 ? 1 : 19) {
        const std::size_t lead = 1 + n % 8;
        alignas(64) double values[810];
        std::ranges::fill(values, -7);
        plugin_rng::drawPart(streaming, values + lead, n, plugin_rng::kLeastStreamed);
        const auto expected = draw(core, n);
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), values + lead)) << n;
        ASSERT_EQ(values[lead - 1], -7);
        ASSERT_EQ(values[lead + n], -7);
        ASSERT_EQ(stateOf(streaming), stateOf(core)) << n;
      }
    }
  });
}

TYPED_TEST(AnyCore, StateRestoresTheSequenceAtEveryPosition) {
  for (bool full : {true, false}) {
    auto core = makeCore<TypeParam>(3, full), other = makeCore<TypeParam>(4, full);
    for (int i = 0; i < 800; ++i) {
      draw(core, 1);
      setState(other, stateOf(core));
      TypeParam copy = core;
      ASSERT_EQ(draw(other, 700), draw(copy, 700)) << i;
      ASSERT_EQ(stateOf(other), stateOf(copy));
    }
  }
}

TYPED_TEST(AnyCore, NormalsDoNotDependOnThePrecisionMode) {
  if constexpr (kHasNormals<TypeParam>) {
    auto full = makeCore<TypeParam>(8, true), reduced = makeCore<TypeParam>(8, false);
    std::vector<double> a(2000), b(2000);
    full.randn(a.data(), a.size());
    reduced.randn(b.data(), b.size());
    EXPECT_EQ(a, b);
  }
}

}  // namespace
