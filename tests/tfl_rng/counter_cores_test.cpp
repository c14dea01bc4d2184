// Philox4x32-10 and Threefry4x64-20 against published vectors, and how their streams are keyed.

#include <gtest/gtest.h>

#include <set>

#include "tests/support/known_answers.h"
#include "tfl_rng/philox4x32.h"
#include "tfl_rng/splitmix.h"
#include "tfl_rng/threefry4x64.h"
#include "tfl_rng/to_double.h"

#if __has_include(<Random123/philox.h>)
#include <Random123/philox.h>
#include <Random123/threefry.h>
#undef philox4x32  // macros in the way of our classes
#undef threefry4x64
#define TV_HAVE_RANDOM123 1
#endif

namespace {

using tfl_rng::philox4x32;
using tfl_rng::threefry4x64;

// Consecutive numbers from `words` as an array of words.
template <class Array>
Array take(std::vector<std::uint64_t> const& words, std::size_t& at) {
  Array result;
  for (auto& word : result) word = static_cast<typename Array::value_type>(words.at(at++));
  return result;
}

// The published rows of one generator: counter, key and result follow its name and its rounds.
std::vector<std::vector<std::uint64_t>> publishedRows(std::string const& name) {
  std::vector<std::vector<std::uint64_t>> rows;
  const auto blocks = known_answers::read("random123_kat.txt");
  for (auto const& row : blocks.front().rows) {
    if (row.front() != name) continue;
    auto& words = rows.emplace_back();
    for (std::size_t i = 2; i < row.size(); ++i) words.push_back(std::stoull(row[i], nullptr, 16));
  }
  return rows;
}

TEST(Philox, EncryptsPublishedCounters) {
  const auto rows = publishedRows("philox4x32");
  ASSERT_EQ(rows.size(), 55u);
  for (auto const& row : rows) {
    std::size_t at = 0;
    const auto counter = take<philox4x32::Counter>(row, at);
    const auto key = take<philox4x32::Key>(row, at);
    EXPECT_EQ(philox4x32::encrypt(counter, key), take<philox4x32::Block>(row, at));
  }
}

TEST(Threefry, EncryptsPublishedCounters) {
  const auto rows = publishedRows("threefry4x64");
  ASSERT_EQ(rows.size(), 113u);
  for (auto const& row : rows) {
    std::size_t at = 0;
    const auto counter = take<threefry4x64::Block>(row, at);
    const auto key = take<threefry4x64::Block>(row, at);
    EXPECT_EQ(threefry4x64::encrypt(counter, key), take<threefry4x64::Block>(row, at));
  }
}

// Runs of 16 blocks across carries into the second and third counter word.
struct CounterRun {
  char const* title;
  std::vector<std::uint64_t> counter;
  std::vector<std::uint64_t> key;
};

TEST(Philox, DrawsTheWordsOfConsecutiveCounters) {
  const std::vector<CounterRun> runs = {
      {"philox4x32-10 counter run from 00000000 00000000 00000000 00000000 key 00000000", {}, {}},
      {"philox4x32-10 counter run from 00000000 00000000 00000000 00000000 key 00000001", {}, {1}},
      {"philox4x32-10 counter run from ffffffff 00000000", {0xffffffff}, {0x1571}},
      {"philox4x32-10 counter run from ffffffff ffffffff",
       {0xffffffff, 0xffffffff},
       {0x3039, 0x2a6}}};
  for (auto const& run : runs) {
    const auto words = known_answers::block("random123_kat.txt", run.title).words(16);
    ASSERT_EQ(words.size(), 64u);
    philox4x32::State state{};
    std::copy(run.counter.begin(), run.counter.end(), state.counter.begin());
    std::copy(run.key.begin(), run.key.end(), state.key.begin());
    philox4x32 core(0, 0, true);
    core.setState(state);
    double draws[32];
    core.randu(draws, 32);
    for (std::size_t i = 0; i < 32; ++i) {
      EXPECT_EQ(draws[i], tfl_rng::open52(words[2 * i] | words[2 * i + 1] << 32)) << run.title;
    }
  }
}

TEST(Threefry, DrawsTheWordsOfConsecutiveCounters) {
  const std::vector<CounterRun> runs = {
      {"threefry4x64-20 counter run from 0000000000000000 0000000000000000 0000000000000000 "
       "0000000000000000 key 0000000000000000",
       {},
       {}},
      {"threefry4x64-20 counter run from 0000000000000000 0000000000000000 0000000000000000 "
       "0000000000000000 key 0000000000000001",
       {},
       {1}},
      {"threefry4x64-20 counter run from ffffffffffffffff", {~std::uint64_t{0}}, {0x1571}}};
  for (auto const& run : runs) {
    const auto words = known_answers::block("random123_kat.txt", run.title).words(16);
    ASSERT_EQ(words.size(), 64u);
    threefry4x64::State state{};
    std::copy(run.counter.begin(), run.counter.end(), state.counter.begin());
    std::copy(run.key.begin(), run.key.end(), state.key.begin());
    threefry4x64 core(0, 0, true);
    core.setState(state);
    double draws[64];
    core.randu(draws, 64);
    for (std::size_t i = 0; i < 64; ++i) {
      EXPECT_EQ(draws[i], tfl_rng::open52(words[i])) << run.title;
    }
  }
}

#ifdef TV_HAVE_RANDOM123
TEST(Philox, EncryptsAsThePublishersCode) {
  tfl_rng::SplitMix64 words(1);
  for (int i = 0; i < 10000; ++i) {
    philox4x32::Counter counter;
    philox4x32::Key key;
    for (auto& word : counter) word = static_cast<std::uint32_t>(words.next());
    for (auto& word : key) word = static_cast<std::uint32_t>(words.next());
    const r123::Philox4x32::ctr_type expected =
        r123::Philox4x32()({{counter[0], counter[1], counter[2], counter[3]}}, {{key[0], key[1]}});
    const auto block = philox4x32::encrypt(counter, key);
    ASSERT_TRUE(std::equal(block.begin(), block.end(), expected.begin()));
  }
}

TEST(Threefry, EncryptsAsThePublishersCode) {
  tfl_rng::SplitMix64 words(2);
  for (int i = 0; i < 10000; ++i) {
    threefry4x64::Block counter;
    threefry4x64::Block key;
    for (auto& word : counter) word = words.next();
    for (auto& word : key) word = words.next();
    const r123::Threefry4x64::ctr_type expected = r123::Threefry4x64()(
        {{counter[0], counter[1], counter[2], counter[3]}}, {{key[0], key[1], key[2], key[3]}});
    const auto block = threefry4x64::encrypt(counter, key);
    ASSERT_TRUE(std::equal(block.begin(), block.end(), expected.begin()));
  }
}
#endif

// Check values published with the generator's C code in several places.
TEST(SplitMix64, FollowsThePublishedSequence) {
  tfl_rng::SplitMix64 words(1234567);
  EXPECT_EQ(words.next(), 6457827717110365317u);
  EXPECT_EQ(words.next(), 3203168211198807973u);
  EXPECT_EQ(words.next(), 9817491932198370423u);
}

TEST(Philox, KeysOfOneSeedAreDistinctAndNeverZero) {
  // mix64(1) + index passes 2^64 - 1 for the last of these, where the sum is taken modulo 2^64 - 1.
  const std::uint64_t mixed = tfl_rng::mix64(1);
  const std::uint64_t wraps = ~std::uint64_t{0} - mixed;
  std::set<philox4x32::Key> keys;
  for (std::uint64_t index : {std::uint64_t{0}, std::uint64_t{1}, wraps - 1, wraps, wraps + 1,
                              philox4x32::kNumStreams - 1}) {
    const philox4x32::Key key = philox4x32(1, index, true).state().key;
    EXPECT_NE(key, philox4x32::Key{}) << index;
    EXPECT_TRUE(keys.insert(key).second) << index;
  }
  EXPECT_EQ(philox4x32(1, wraps, true).state().key, (philox4x32::Key{1, 0}));
  EXPECT_EQ(philox4x32(0, 0, true).state().key, (philox4x32::Key{1, 0}));
}

TEST(Threefry, KeyHoldsSeedAndStreamIndex) {
  EXPECT_EQ(threefry4x64(0xffffffff, 7, true).state().key,
            (threefry4x64::Block{0xffffffff, 7, 1, 0}));
}

TEST(Threefry, AdvanceCarriesThroughAllCounterWords) {
  threefry4x64 core(0, 0, true);
  const std::uint64_t full = ~std::uint64_t{0};
  core.setState({{full, full, full, 4}, {1, 2, 3, 4}, 7});
  EXPECT_EQ(core.state().position, 3u);
  core.advance(1);
  EXPECT_EQ(core.state().counter, (threefry4x64::Block{0, 0, 0, 5}));
  EXPECT_EQ(core.state().position, 0u);
}

}  // namespace
