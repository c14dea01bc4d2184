// MRG32k3a against the published package's results and exact powers of its matrices.

#include "tfl_rng/mrg32k3a.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <set>

#include "tests/support/known_answers.h"
#include "tfl_rng/uint128.h"

namespace {

using tfl_rng::mrg32k3a;
using tfl_rng::uint128;
using Words = mrg32k3a::Words;

constexpr Words kDefault = {12345, 12345, 12345, 12345, 12345, 12345};

Words wordsFrom(std::vector<std::string> const& row, std::size_t at) {
  Words words;
  for (auto& word : words) word = static_cast<std::uint32_t>(std::stoul(row.at(at++)));
  return words;
}

// The rows of the file that start with `title`, whatever block they stand in.
std::vector<std::vector<std::string>> rowsOf(std::vector<std::string> const& title) {
  std::vector<std::vector<std::string>> rows;
  const auto blocks = known_answers::read("mrg32k3a.txt");
  for (auto const& block : blocks) {
    for (auto const& row : block.rows) {
      if (row.size() > title.size() && std::equal(title.begin(), title.end(), row.begin())) {
        rows.push_back(row);
      }
    }
  }
  return rows;
}

Words publishedState(std::vector<std::string> const& title) {
  return wordsFrom(rowsOf(title).at(0), title.size());
}

std::vector<double> draw(mrg32k3a& core, std::size_t n) {
  std::vector<double> values(n);
  core.randu(values.data(), n);
  return values;
}

TEST(Mrg32k3a, OneStepDrawsFollowTheRecurrence) {
  auto z = known_answers::block("mrg32k3a.txt", "z default seed").words(10);
  ASSERT_EQ(z.size(), 500u);
  mrg32k3a core(0, 0, false);
  const auto values = draw(core, 500);
  for (std::size_t i = 0; i < 500; ++i) {
    EXPECT_EQ(values[i], static_cast<double>(z[i]) * 2.328306549295727688e-10) << i;
  }
  EXPECT_EQ(core.state().current,
            (Words{1539072245, 1392410662, 630929338, 2743946990, 3212329495, 2694678887}));
}

TEST(Mrg32k3a, TwoStepDrawsAreThePublishedIncreasedPrecision) {
  const auto expected = known_answers::block("mrg32k3a.txt", "two-draw doubles").doubles();
  ASSERT_EQ(expected.size(), 20u);
  mrg32k3a core(0, 0, true);
  EXPECT_EQ(draw(core, 20), expected);
}

TEST(Mrg32k3a, JumpsByPowersOfTwo) {
  const auto rows = rowsOf({"jump"});
  ASSERT_EQ(rows.size(), 16u);
  for (auto const& row : rows) {
    const unsigned power = static_cast<unsigned>(std::stoul(row[1].substr(2)));
    ASSERT_EQ(row[1].substr(0, 2), "2^");
    const Words expected = wordsFrom(row, 2);
    if (power <= 127) {
      EXPECT_EQ(mrg32k3a::ahead(kDefault, 1, power), expected) << row[1];
    } else {
      EXPECT_EQ(mrg32k3a::ahead(kDefault, std::uint64_t{1} << (power - 127), 127), expected)
          << row[1];
    }
  }
}

// The decimal number modulo 2^256 as four words, lowest first.
std::array<std::uint64_t, 4> parse(std::string const& decimal) {
  std::array<std::uint64_t, 4> words{};
  for (char digit : decimal) {
    uint128 carry = static_cast<unsigned>(digit - '0');
    for (auto& word : words) {
      carry += uint128{word} * 10;
      word = tfl_rng::low64(carry);
      carry >>= 64;
    }
  }
  return words;
}

TEST(Mrg32k3a, JumpsByOtherLengths) {
  const auto rows = rowsOf({"jumpn"});
  ASSERT_GE(rows.size(), 10u);
  for (auto const& row : rows) {
    const auto n = parse(row[1]);
    // In pieces of 64 bits, the upper ones shifted below the highest power of a step.
    Words words = mrg32k3a::ahead(kDefault, n[0], 0);
    words = mrg32k3a::ahead(words, n[1], 64);
    words = mrg32k3a::ahead(words, n[2] << 1, 127);
    ASSERT_LT(n[2], std::uint64_t{1} << 63);
    EXPECT_EQ(words, wordsFrom(row, 2)) << row[1];
  }
}

TEST(Mrg32k3a, StreamsStartWhereThePublishedPackageStartsThem) {
  EXPECT_EQ(mrg32k3a(0, 0, true).state().start, publishedState({"published", "state", "g1"}));
  EXPECT_EQ(mrg32k3a(0, 1, true).state().start, publishedState({"published", "state", "g2"}));
  EXPECT_EQ(mrg32k3a(0, 2, true).state().start, publishedState({"published", "state", "g3"}));
  for (unsigned stream : {1u, 2u, 3u}) {
    const std::string name = "stream" + std::to_string(stream);
    EXPECT_EQ(mrg32k3a::ahead({1, 1, 1, 1, 1, 1}, stream, mrg32k3a::kLog2StreamLen),
              publishedState({"published", "package", "seed", "1x6:", name}));
  }
  mrg32k3a core(0, 0, true);
  core.setFullPrecision(false);
  core.advance(35);
  EXPECT_EQ(core.state().current, publishedState({"published", "g1", "after", "35", "steps"}));
}

// The package printed 13 digits.
void expectPublished(std::vector<double> const& values, std::vector<std::string> const& title) {
  const auto row = rowsOf(title).at(0);
  for (std::size_t i = 0; i < values.size(); ++i) {
    const double expected = std::stod(row.at(title.size() + i));
    EXPECT_NEAR(values[i], expected, 1e-12 * expected);
  }
}

TEST(Mrg32k3a, DrawsOfStreamsAndSubstreamsAreThePublishedOnes) {
  mrg32k3a first(0, 0, false);
  first.advance(35);
  expectPublished(draw(first, 1), {"published", "g1", "next", "u"});

  mrg32k3a third(0, 2, false);
  const auto values = draw(third, 101);
  expectPublished({values.begin(), values.begin() + 5}, {"published", "g3", "first", "5", "u"});
  expectPublished({std::accumulate(values.begin() + 1, values.end(), 0.0)},
                  {"published", "g3", "sum", "of", "u", "number", "2", "to", "101"});
  third.setSubstream(4);
  expectPublished(draw(third, 5),
                  {"published", "g3", "substream", "4", "(zero-based)", "first", "5", "u"});

  mrg32k3a second(0, 1, true);
  const auto doubles = draw(second, 100000);
  expectPublished(
      {std::accumulate(doubles.begin(), doubles.end(), 0.0)},
      {"published", "g2", "sum", "of", "the", "first", "100000", "two-draw", "doubles"});
}

TEST(Mrg32k3a, SeedsFillAllWordsBelowTheirModuli) {
  std::set<std::uint32_t> seen;
  for (std::uint32_t seed : {1u, 2u, 3u, 0xffffffffu}) {
    const Words words = mrg32k3a(seed, 0, true).state().current;
    for (std::size_t i = 0; i < 6; ++i) {
      EXPECT_LT(words[i], i < 3 ? mrg32k3a::kModulus1 : mrg32k3a::kModulus2);
      seen.insert(words[i]);
    }
  }
  EXPECT_EQ(seen.size(), 24u);
  // The published SplitMix64 sequence of this seed, modulo both moduli.
  EXPECT_EQ(mrg32k3a(1234567, 0, true).state().current,
            (Words{632363958, 2734393549, 3744140811, 2202394726, 2405031064, 2045259707}));
}

// With the terms 0, 0, b and 0, 1, 0 the first step gives z = m1, the largest u, and b fixes the
// second: 2^24 - 1 makes the sum exactly 1, 2^24 the double after it.
TEST(Mrg32k3a, IncreasedPrecisionStaysInsideTheIntervalAtOne) {
  mrg32k3a core(0, 0, true);
  core.setState({{0, 0, 353412662, 0, 1, 0}, kDefault});
  EXPECT_EQ(draw(core, 1).front(), 0x1p-53);
  core.setState({{0, 0, 4100629002, 0, 1, 0}, kDefault});
  EXPECT_EQ(draw(core, 1).front(), 0x1p-52);
}

}  // namespace
