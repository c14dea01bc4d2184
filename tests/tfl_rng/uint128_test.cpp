// The portable 128-bit integers against those of the compiler.

#include "tfl_rng/uint128.h"

#include <gtest/gtest.h>

#include <vector>

#include "tfl_rng/splitmix.h"

#ifdef __SIZEOF_INT128__

namespace {

using tfl_rng::int128;
using tfl_rng::uint128;
using tfl_rng::portable::Int128;
using tfl_rng::portable::Uint128;

Uint128 portable(uint128 x) { return {tfl_rng::high64(x), tfl_rng::low64(x)}; }
Int128 portable(int128 x) { return Int128(portable(static_cast<uint128>(x))); }

// Numbers of every width, at and around powers of two, and with random digits.
std::vector<uint128> numbers() {
  std::vector<uint128> all = {0};
  tfl_rng::SplitMix64 random(21);
  for (int bit = 0; bit < 128; bit += bit % 31 == 0 ? 1 : 3) {
    uint128 const power = uint128{1} << bit;
    uint128 const digits = uint128{random.next()} << 64 | random.next();
    all.insert(all.end(), {power, power - 1, ~power, digits >> (127 - bit)});
  }
  return all;
}

TEST(PortableInt128, ComputesAsTheCompilersOwn) {
  for (uint128 const a : numbers()) {
    Uint128 const x = portable(a);
    EXPECT_EQ(static_cast<std::uint64_t>(x), static_cast<std::uint64_t>(a));
    EXPECT_EQ(static_cast<int>(x), static_cast<int>(a));
    EXPECT_EQ(static_cast<bool>(x), a != 0);
    EXPECT_EQ(~x, portable(~a));
    EXPECT_EQ(-x, portable(-a));
    for (int by = 0; by < 128; ++by) {
      ASSERT_EQ(x << by, portable(a << by)) << by;
      ASSERT_EQ(x >> by, portable(a >> by)) << by;
    }
    for (uint128 const b : numbers()) {
      Uint128 const y = portable(b);
      ASSERT_EQ(x + y, portable(a + b));
      ASSERT_EQ(x - y, portable(a - b));
      ASSERT_EQ(x * y, portable(a * b));
      ASSERT_EQ(x & y, portable(a & b));
      ASSERT_EQ(x | y, portable(a | b));
      ASSERT_EQ(x < y, a < b);
      ASSERT_EQ(x == y, a == b);
      if (b == 0) continue;
      ASSERT_EQ(x / y, portable(a / b));
      ASSERT_EQ(x % y, portable(a % b));
    }
  }
}

TEST(PortableInt128, KeepsSigns) {
  for (uint128 const bits : numbers()) {
    auto const a = static_cast<int128>(bits);
    Int128 const x = portable(a);
    for (uint128 const other : numbers()) {
      auto const b = static_cast<int128>(other);
      Int128 const y = portable(b);
      ASSERT_EQ(x < y, a < b);
      if (b == 0 || b == -1) continue;  // the lowest number has no quotient by -1
      ASSERT_EQ(x / y, portable(a / b));
    }
  }
  for (std::int64_t const value : {std::int64_t{-1}, INT64_MIN, INT64_MAX, std::int64_t{0}}) {
    EXPECT_EQ(Int128(value), portable(int128{value}));
    EXPECT_EQ(Int128(static_cast<std::int8_t>(value)),
              portable(int128{static_cast<std::int8_t>(value)}));
  }
  for (double const value :
       {0.0, -1.0, 0x1p64, -0x1.8p64, 0x1.fffffffffffffp66, -0x1p100, 12345.0}) {
    EXPECT_EQ(Int128(value), portable(static_cast<int128>(value))) << value;
  }
}

}  // namespace

#endif
