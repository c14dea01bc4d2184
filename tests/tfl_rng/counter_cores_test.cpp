// Philox4x32-10 and Threefry4x64-20 against published vectors, and how their streams are keyed.

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <span>
#include <sstream>

#include "tests/support/cores.h"
#include "tests/support/known_answers.h"
#include "tfl_rng/splitmix.h"
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

// What the tests need of each generator.
template <class Core>
struct Traits;
template <>
struct Traits<philox4x32> {
  static constexpr char const* kName = "philox4x32";
  static constexpr std::size_t kRows = 55;
  using Counter = philox4x32::Counter;
  using Key = philox4x32::Key;
#ifdef TV_HAVE_RANDOM123
  using Published = r123::Philox4x32;
#endif
};
template <>
struct Traits<threefry4x64> {
  static constexpr char const* kName = "threefry4x64";
  static constexpr std::size_t kRows = 113;
  using Counter = threefry4x64::Block;
  using Key = threefry4x64::Block;
#ifdef TV_HAVE_RANDOM123
  using Published = r123::Threefry4x64;
#endif
};

template <class Core>
class CounterCore : public testing::Test {};
using CounterCores = testing::Types<philox4x32, threefry4x64>;
TYPED_TEST_SUITE(CounterCore, CounterCores);

// Words from text, base 16, as an array; the rest stays 0.
template <class Array>
Array take(std::span<std::string const> words) {
  Array result{};
  for (std::size_t i = 0; i < result.size() && i < words.size(); ++i)
    result[i] = static_cast<typename Array::value_type>(std::stoull(words[i], nullptr, 16));
  return result;
}

// Rows of name, rounds, counter, key and result.
TYPED_TEST(CounterCore, EncryptsPublishedCounters) {
  std::size_t checked = 0;
  for (auto const& row : known_answers::rows("kat/random123_kat.txt")) {
    if (row.front() != Traits<TypeParam>::kName) continue;
    auto const words = std::span(row).subspan(2);
    auto const keySize = std::tuple_size_v<typename Traits<TypeParam>::Key>;
    EXPECT_EQ(TypeParam::encrypt(take<typename Traits<TypeParam>::Counter>(words),
                                 take<typename Traits<TypeParam>::Key>(words.subspan(4))),
              take<typename Traits<TypeParam>::Counter>(words.subspan(4 + keySize)));
    ++checked;
  }
  EXPECT_EQ(checked, Traits<TypeParam>::kRows);
}

// Runs of 16 blocks, some across carries: "<name>-<rounds> counter run from <words> key <words>".
TYPED_TEST(CounterCore, DrawsTheWordsOfConsecutiveCounters) {
  int runs = 0;
  for (auto const& block : known_answers::read("random123_kat.txt")) {
    if (!block.title.starts_with(Traits<TypeParam>::kName)) continue;
    std::istringstream title(block.title);
    std::vector<std::string> fields(std::istream_iterator<std::string>(title), {});
    auto const key = static_cast<std::size_t>(std::ranges::find(fields, "key") - fields.begin());
    TypeParam core(0, 0, true);
    typename TypeParam::State state{};
    state.counter =
        take<typename Traits<TypeParam>::Counter>(std::span(fields).subspan(4, key - 4));
    state.key = take<typename Traits<TypeParam>::Key>(std::span(fields).subspan(key + 1));
    core.setState(state);
    const auto words = block.words(16);
    std::size_t const each = sizeof(state.counter[0]) == 4 ? 2 : 1;
    ASSERT_EQ(words.size(), 64u);
    const auto draws = testing_support::draw(core, words.size() / each);
    for (std::size_t i = 0; i < draws.size(); ++i) {
      const std::uint64_t word = each == 1 ? words[i] : words[2 * i] | words[2 * i + 1] << 32;
      EXPECT_EQ(draws[i], tfl_rng::open52(word)) << block.title;
    }
    ++runs;
  }
  EXPECT_GE(runs, 3);
}

#ifdef TV_HAVE_RANDOM123
TYPED_TEST(CounterCore, EncryptsAsThePublishersCode) {
  tfl_rng::SplitMix64 source(1);
  for (int i = 0; i < 10000; ++i) {
    typename Traits<TypeParam>::Counter counter;
    typename Traits<TypeParam>::Key key;
    for (auto& word : counter)
      word = static_cast<std::remove_reference_t<decltype(word)>>(source.next());
    for (auto& word : key)
      word = static_cast<std::remove_reference_t<decltype(word)>>(source.next());
    using Published = typename Traits<TypeParam>::Published;
    typename Published::ctr_type publishedCounter;
    typename Published::key_type publishedKey;
    std::ranges::copy(counter, publishedCounter.begin());
    std::ranges::copy(key, publishedKey.begin());
    const auto expected = Published()(publishedCounter, publishedKey);
    ASSERT_TRUE(std::ranges::equal(TypeParam::encrypt(counter, key), expected));
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
