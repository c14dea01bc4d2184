// Integers of every type and with any limits, and what takes them from a stream as 32-bit words.

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

#include <tvmathrng/random.h>
#include "runtime/vm.h"

namespace {

using namespace tvmathrng;

template <class T>
constexpr char const* kClassName = nullptr;
#define TV_CLASS(type, name) \
  template <>                \
  constexpr char const* kClassName<type> = name
TV_CLASS(std::int8_t, "int8");
TV_CLASS(std::uint8_t, "uint8");
TV_CLASS(std::int16_t, "int16");
TV_CLASS(std::uint16_t, "uint16");
TV_CLASS(std::int32_t, "int32");
TV_CLASS(std::uint32_t, "uint32");
TV_CLASS(std::int64_t, "double");  // the host language draws none of 64 bits
TV_CLASS(std::uint64_t, "double");
TV_CLASS(long long, "double");
TV_CLASS(unsigned long long, "double");
TV_CLASS(double, "double");
TV_CLASS(float, "single");
#undef TV_CLASS

template <class T>
class EveryInteger : public testing::Test {};
using Integers = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t,
                                std::int32_t, std::uint32_t, std::int64_t, std::uint64_t, long long,
                                unsigned long long, double, float>;
TYPED_TEST_SUITE(EveryInteger, Integers);

TYPED_TEST(EveryInteger, IsDrawnAsTheBuiltinDrawsIt) {
  using T = TypeParam;
  using Drawn = std::conditional_t<sizeof(T) == 8, double, T>;
  constexpr std::size_t kDrawn = 301;
  runtime::Vm vm;
  for (auto const& [lowest, highest] : {std::pair<T, T>{1, 6}, {T(-100), 100}, {7, 7}}) {
    if (lowest > highest) continue;  // of unsigned types
    Stream stream("mrg32k3a", Seed{7});
    std::vector<T> const drawn = stream.integers<T>({lowest, highest}, kDrawn);
    txArrayPtr const value =
        vm.evaluate("randi(RandStream('mrg32k3a','Seed',7),[" + std::to_string(lowest) + " " +
                    std::to_string(highest) + "],1,301,'" + kClassName<T> + "')");
    auto const* const expected = std::as_const(*value).template dataAs<Drawn>();
    EXPECT_TRUE(std::equal(drawn.begin(), drawn.end(), expected, expected + kDrawn));
  }
}

// The definition: the integer part of word count / 2^64, words refused whose fraction is among the
// first 2^64 modulo count.
template <class T>
void expectWide(T lowest, T highest) {
  __extension__ using Wide = unsigned __int128;
  auto const count = Wide(std::uint64_t(highest) - std::uint64_t(lowest)) + 1;
  constexpr Wide kWords = Wide{1} << 64;
  Stream stream("mrg32k3a", Seed{7});
  Stream mirror = stream.copy();
  Stream halves = stream.copy();
  mirror.set_antithetic(true);
  auto const values = stream.integers<T>({lowest, highest}, 300);
  auto const mirrored = mirror.integers<T>({lowest, highest}, 300);
  for (std::size_t i = 0; i < values.size(); ++i) {
    Wide product = 0;
    do {
      Wide const word = Wide(halves.integer<std::uint32_t>({0, 0xFFFFFFFF})) << 32;
      product = (word + halves.integer<std::uint32_t>({0, 0xFFFFFFFF})) * count;
    } while (product % kWords < kWords % count);
    ASSERT_EQ(values[i], static_cast<T>(std::uint64_t(lowest) + std::uint64_t(product / kWords)));
    ASSERT_EQ(std::uint64_t(mirrored[i]),
              std::uint64_t(lowest) + std::uint64_t(highest) - std::uint64_t(values[i]));
  }
  EXPECT_EQ(stream.uniform(), halves.uniform());
}

TEST(Integers, OfAllLimitsOf64BitsAreEquallyLikely) {
  expectWide<std::int64_t>(std::numeric_limits<std::int64_t>::min(),
                           std::numeric_limits<std::int64_t>::max());
  expectWide<std::uint64_t>(0, std::numeric_limits<std::uint64_t>::max());
  expectWide<std::uint64_t>(1ULL << 63, (1ULL << 63) + 2);
  expectWide<unsigned long long>(5, (3ULL << 62) + 7);  // a quarter of the words is refused
  expectWide<long long>(-(1LL << 53), -(1LL << 53) + 9);
  expectWide<std::int64_t>(-1, (1LL << 53) - 2);
}

TEST(SeedSequence, IsTheStreamsIntegersAndSeedsStreams) {
  Stream stream("philox4x32_10", Seed{3});
  Stream same = stream.copy();
  SeedSequence seeds(stream);
  std::vector<std::uint32_t> words(624);
  seeds.generate(words.begin(), words.end());
  EXPECT_EQ(words, same.integers<std::uint32_t>({0, 0xFFFFFFFF}, 624));
  EXPECT_NE(std::mt19937_64(seeds)(), std::mt19937_64(seeds)());
  std::seed_seq numbers{1, 2, 3};
  std::vector<std::uint32_t> first(1);
  numbers.generate(first.begin(), first.end());
  EXPECT_EQ(seed_from(numbers), Seed{first[0]});
}

TEST(Bits, AreTheLeadingBitsOfUniforms) {
  Stream stream("philox4x32_10", Seed{3});
  Stream same("philox4x32_10", Seed{3});
  Bits bits(stream);
  std::vector<std::uint32_t> drawn(100);
  std::generate(drawn.begin(), drawn.end(), bits);
  EXPECT_EQ(drawn, same.integers<std::uint32_t>({0, 4294967295}, 100));
}

}  // namespace
