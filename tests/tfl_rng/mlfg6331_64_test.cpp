// The multiplicative lagged Fibonacci generator: words, jumps, and the proof of its streams.

#include "tfl_rng/mlfg6331_64.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "tests/support/known_answers.h"
#include "tfl_rng/modular.h"
#include "tfl_rng/odd_power.h"
#include "tfl_rng/to_double.h"

namespace {

using tfl_rng::mlfg6331_64;
using Table = mlfg6331_64::Table;

std::vector<std::uint64_t> words(std::string const& title) {
  return known_answers::block("mlfg6331.txt", title).words(16);
}

Table table(std::string const& title) {
  const auto from = words(title);
  if (from.size() != mlfg6331_64::kLag) throw std::runtime_error("no table " + title);
  Table result;
  std::ranges::copy(from, result.begin());
  return result;
}

mlfg6331_64 startingAt(Table const& ring, std::uint64_t position = 0) {
  mlfg6331_64 core(0, 0, true);
  core.setState({ring, position, ring});
  return core;
}

TEST(Mlfg6331, DrawsFollowTheRecurrence) {
  const auto expected = words("out 300");
  ASSERT_EQ(expected.size(), 300u);
  mlfg6331_64 core = startingAt(table("init"));
  double values[300];
  core.randu(values, 300);
  for (std::size_t i = 0; i < 300; ++i) EXPECT_EQ(values[i], tfl_rng::open52(expected[i])) << i;
}

struct Jump {
  char const* title;
  std::uint64_t count;
  unsigned log2Steps;
};

TEST(Mlfg6331, JumpsReachTheExactTables) {
  const Jump jumps[] = {{"table after 1 steps", 1, 0},
                        {"table after 62 steps", 62, 0},
                        {"table after 63 steps", 63, 0},
                        {"table after 64 steps", 64, 0},
                        {"table after 1000 steps", 1000, 0},
                        {"table after 10^6 steps", 1000000, 0},
                        {"table after 2^31 steps", 1, 31},
                        {"table after 2^62 steps", std::uint64_t{1} << 62, 0},
                        {"table after 2^64 steps", 1, 64},
                        {"table after 2^72 steps", 1, 72},
                        {"table after 2^123 steps", std::uint64_t{1} << 51, 72},
                        {"table after (2^51-1)*2^72 steps", (std::uint64_t{1} << 51) - 1, 72}};
  for (Jump const& way : jumps) {
    Table moved = table("init");
    ASSERT_TRUE(mlfg6331_64::jump(moved, way.count, way.log2Steps));
    EXPECT_EQ(moved, table(way.title)) << way.title;
  }
}

TEST(Mlfg6331, SubstreamsStartAtTheExactTables) {
  mlfg6331_64 core = startingAt(table("init"));
  core.advance(77);
  ASSERT_EQ(core.setSubstream(1), tfl_rng::ok);
  EXPECT_EQ(core.state().ring, table("table after 2^72 steps"));
  ASSERT_EQ(core.setSubstream((std::uint64_t{1} << 51) - 1), tfl_rng::ok);
  EXPECT_EQ(core.state().ring, table("table after (2^51-1)*2^72 steps"));
}

TEST(OddPower, LogarithmsAreTheExactOnes) {
  const auto rows = known_answers::block("mlfg6331.txt", "discrete logarithms").rows;
  ASSERT_GE(rows.size(), 20u);
  for (auto const& row : rows) {
    const std::uint64_t word = std::stoull(row[0], nullptr, 16);
    const std::uint64_t exponent = std::stoull(row[2], nullptr, 16);
    const bool negative = row[1] == "1";
    EXPECT_EQ(tfl_rng::powerOf(word).exponent, exponent) << row[0];
    EXPECT_EQ(tfl_rng::powerOf(word).negative, negative) << row[0];
    EXPECT_EQ(tfl_rng::wordOf({exponent, negative}), word) << row[0];
  }
}

TEST(Mlfg6331, EvenWordsCannotBeJumped) {
  Table even = table("init");
  even[40] = 2;
  mlfg6331_64 core = startingAt(even);
  const auto before = core.state();
  EXPECT_EQ(core.advance(1000000), tfl_rng::cannotComputeState);
  EXPECT_EQ(core.setSubstream(1), tfl_rng::cannotComputeState);
  EXPECT_EQ(core.state(), before);
  EXPECT_EQ(core.substream(), 0u);
}

// The canonical form as the header promises it, and what of it tells streams apart.
TEST(Mlfg6331, StreamsStartInCanonicalForm) {
  std::map<std::uint64_t, std::uint64_t> secondExponents;
  for (std::uint32_t seed : {0u, 1u, 0xffffffffu}) {
    for (std::uint64_t stream : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{2},
                                 mlfg6331_64::kNumStreams / 2, mlfg6331_64::kNumStreams - 1}) {
      const Table start = mlfg6331_64(seed, stream, true).state().start;
      for (std::size_t i = 0; i < start.size(); ++i) {
        const std::uint64_t exponent = tfl_rng::powerOf(start[i]).exponent;
        EXPECT_EQ(exponent % 2, i == 0 ? 1u : 0u);
        if (i == 1) {
          // One exponent for each stream, whatever the seed.
          EXPECT_EQ(secondExponents.emplace(exponent, stream).first->second, stream);
        } else if (i == 2) {
          EXPECT_EQ(exponent >> 1 & 0xffffffff, seed);
        } else if (i == 15) {
          EXPECT_EQ(exponent, 0u);
        }
      }
    }
  }
  EXPECT_EQ(secondExponents.size(), 5u);
}

using Trinomial = tfl_rng::ModularTrinomial<63, 32>;
using Polynomial = Trinomial::Polynomial;

// Entry 15 of qE, where power = 1 + 2^bits q and E is the pattern 1, 0, ..., 0 of lowest bits.
int entry15(Polynomial const& power, unsigned bits) {
  bool e[63 + 15] = {true};
  for (std::size_t i = 63; i < std::size(e); ++i) e[i] = e[i - 63] != e[i - 31];
  int entry = 0;
  for (std::size_t j = 0; j < 63; ++j) {
    const std::uint64_t change = power[j] - (j == 0 ? 1 : 0);
    EXPECT_EQ(change % (std::uint64_t{1} << bits), 0u);
    if (e[15 + j]) entry ^= static_cast<int>(change >> bits & 1);
  }
  return entry;
}

// The computed part of the proof in the header.
TEST(Mlfg6331, ExactlyOneCanonicalTableLiesOnEachCycle) {
  Polynomial one{};
  one[0] = 1;
  Polynomial t{};
  t[1] = 1;
  Polynomial power = one;  // t^(2^j - 1)
  for (int j = 0; j < 63; ++j) {
    power = Trinomial::multiply(Trinomial::multiply(power, power), t);
  }
  const Polynomial squared = Trinomial::multiply(power, power);
  EXPECT_EQ(entry15(power, 1), 1);
  EXPECT_EQ(entry15(squared, 2), 1);
  EXPECT_EQ(entry15(Trinomial::multiply(squared, squared), 3), 1);

  // Not before: 2^63 - 1 = 7^2 * 73 * 127 * 337 * 92737 * 649657, and no power of t with one of
  // these primes left out is 1 modulo 2.
  for (std::uint64_t prime : {7, 73, 127, 337, 92737, 649657}) {
    const std::uint64_t n = (~std::uint64_t{0} >> 1) / prime;
    ASSERT_EQ(n * prime, ~std::uint64_t{0} >> 1);
    Polynomial shorter = one;
    for (int bit = 62; bit >= 0; --bit) {
      shorter = Trinomial::multiply(shorter, shorter);
      if ((n >> bit & 1) != 0) shorter = Trinomial::multiply(shorter, t);
    }
    for (auto& coefficient : shorter) coefficient %= 2;
    EXPECT_NE(shorter, one) << prime;
  }
}

}  // namespace
