// What holds for every core with streams: jump-ahead, substreams, state, independence.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <set>
#include <vector>

#include "tests/support/cores.h"

namespace {

using testing_support::draw;

template <class Core>
class StreamCore : public testing::Test {};

TYPED_TEST_SUITE(StreamCore, testing_support::StreamCores);

TYPED_TEST(StreamCore, FewDrawsAtATimeFollowEveryMove) {
  TypeParam core(5, 1, true);
  const auto other = TypeParam(6, 2, true).state();
  const std::function<void()> moves[] = {[&] {},
                                         [&] { core.advance(3); },
                                         [&] { core.setSubstream(7); },
                                         [&] { draw(core, 21); },
                                         [&] { core.setState(other); },
                                         [&] { core.reset(4); }};
  for (auto const& move : moves) {
    draw(core, 1);  // draws made ahead, if any, are at hand when the core moves
    move();
    TypeParam atOnce = core;
    atOnce.setState(core.state());
    std::vector<double> values;
    for (std::size_t i = 0; i < 20; ++i) {
      const auto some = draw(core, 1 + i % 9);
      values.insert(values.end(), some.begin(), some.end());
    }
    EXPECT_EQ(values, draw(atOnce, values.size()));
    EXPECT_EQ(core.state(), atOnce.state());
  }
}

TYPED_TEST(StreamCore, AdvanceEqualsDrawing) {
  for (bool full : {true, false}) {
    for (std::size_t before : {0, 1, 2, 3, 61}) {
      for (std::size_t n : {0, 1, 2, 3, 4, 5, 31, 62, 63, 64, 1000, 40001, 70003}) {
        TypeParam drawn(9, 3, full);
        draw(drawn, before);
        TypeParam moved = drawn;
        draw(drawn, n);
        ASSERT_EQ(moved.advance(n), tfl_rng::ok);
        ASSERT_EQ(moved.state(), drawn.state()) << before << " + " << n;
        ASSERT_EQ(draw(moved, 70), draw(drawn, 70)) << before << " + " << n;
      }
    }
  }
}

TYPED_TEST(StreamCore, AdvancesAdd) {
  const std::size_t most = ~std::size_t{0};
  const std::size_t pairs[][2] = {{1, 2},
                                  {12345, 678901234567},
                                  {std::size_t{1} << 60, 3},
                                  {std::size_t{1} << 63, (std::size_t{1} << 63) - 1},
                                  {most - 99999, 99999}};
  for (bool full : {true, false}) {
    for (auto const& [a, b] : pairs) {
      TypeParam once(2, 5, full);
      draw(once, 1);
      TypeParam twice = once;
      once.advance(a + b);
      twice.advance(a);
      twice.advance(b);
      EXPECT_EQ(twice.state(), once.state()) << a << " + " << b;
    }
  }
}

// 2^64 draws, which no single advance can make.
template <class Core>
void advanceBy2To64(Core& core) {
  core.advance(~std::size_t{0});
  core.advance(1);
}

TYPED_TEST(StreamCore, SubstreamsLieTheirLengthApart) {
  // Reduced precision, in which the length counts draws for every generator.
  TypeParam walking(4, 2, false);
  TypeParam jumping(4, 2, false);
  const auto steps = std::uint64_t{1} << (TypeParam::kLog2SubstreamLen - 64);
  const std::uint64_t substreams = 4096 / steps;  // 2^12 jumps of 2^64 draws at most
  for (std::uint64_t k = 0; k <= substreams && k < 6; ++k) {
    jumping.advance(1234567);
    ASSERT_EQ(jumping.setSubstream(k), tfl_rng::ok);
    EXPECT_EQ(draw(jumping, 10), draw(walking, 10)) << "substream " << k;
    jumping.setSubstream(k);
    walking.setSubstream(0);
    for (std::uint64_t i = 0; i < steps * (k + 1); ++i) advanceBy2To64(walking);
  }
}

TYPED_TEST(StreamCore, ResetLeavesTheSubstream) {
  TypeParam core(4, 2, true);
  core.setSubstream(9);
  core.reset(4);
  EXPECT_EQ(core.substream(), 0u);
  EXPECT_EQ(core.state(), TypeParam(4, 2, true).state());
}

TYPED_TEST(StreamCore, SubstreamsCountFromTheStartOfTheRestoredStream) {
  TypeParam core(11, 6, true), other(99, 6, true);
  core.setSubstream(3);
  draw(core, 5);
  other.setState(core.state());
  core.setSubstream(7);
  other.setSubstream(7);
  EXPECT_EQ(draw(other, 10), draw(core, 10));
}

TYPED_TEST(StreamCore, AnyStreamIndexIsSafe) {
  for (std::uint64_t index : {TypeParam::kNumStreams - 1, TypeParam::kNumStreams,
                              TypeParam::kNumStreams + 1, ~std::uint64_t{0}}) {
    TypeParam core(1, index, true);
    EXPECT_EQ(core.streamIndex(), index);
    for (double value : draw(core, 100)) {
      EXPECT_GT(value, 0);
      EXPECT_LT(value, 1);
    }
  }
}

TYPED_TEST(StreamCore, NeighboursShareNoValues) {
  constexpr std::size_t n = 1000;
  std::set<double> seen;
  std::size_t drawn = 0;
  const auto add = [&](TypeParam& core) {
    const auto values = draw(core, n);
    seen.insert(values.begin(), values.end());
    drawn += n;
  };
  for (std::uint32_t seed : {0u, 1u, 0xffffffffu}) {
    for (std::size_t stream : {0, 1, 2, 3}) {
      TypeParam core(seed, stream, true);
      add(core);
      if (seed != 1) continue;
      for (std::uint64_t substream : {1, 2, 3}) {
        core.setSubstream(substream);
        add(core);
      }
    }
  }
  EXPECT_EQ(seen.size(), drawn);
}

// The largest correlation of any two of the sequences, in units of its standard deviation.
double largestCorrelation(std::vector<std::vector<double>> const& sequences) {
  double largest = 0;
  for (std::size_t i = 0; i < sequences.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const std::size_t n = sequences[i].size();
      double sum = 0;
      for (std::size_t k = 0; k < n; ++k) {
        sum += (sequences[i][k] - 0.5) * (sequences[j][k] - 0.5);
      }
      // A product of two independent centred uniforms has the variance 1/144.
      largest = std::max(largest, std::abs(sum) * 12 / std::sqrt(static_cast<double>(n)));
    }
  }
  return largest;
}

TYPED_TEST(StreamCore, StreamsAndSubstreamsAreUncorrelated) {
  constexpr std::size_t n = 1000000;
  std::vector<std::vector<double>> streams;
  std::vector<std::vector<double>> substreams;
  TypeParam one(1, 0, true);
  for (std::size_t i = 0; i < 16; ++i) {
    TypeParam core(1, i, true);
    streams.push_back(draw(core, n));
    one.setSubstream(i);
    substreams.push_back(draw(one, n));
  }
  EXPECT_LT(largestCorrelation(streams), 4.9);
  EXPECT_LT(largestCorrelation(substreams), 4.9);
}

}  // namespace
