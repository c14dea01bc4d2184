#include "tfl_rng/convert.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::uint64_t kMost = ~std::uint64_t{0};

struct Row {
  double value;
  std::uint32_t low32;
  std::uint64_t uint64;
  double truncated;
};

TEST(Convert, EveryValueHasOneResult) {
  const Row rows[] = {
      {0.99, 0, 0, 0},
      {-0.99, 0, 0, 0},
      {-1.5, 0xffffffff, 0, -1},
      {0x1p32 + 7.5, 7, (std::uint64_t{1} << 32) + 7, 0x1p32 + 7},
      {0x1p52 - 0.5, 0xffffffff, (std::uint64_t{1} << 52) - 1, 0x1p52 - 1},
      {0x1p52 + 1, 1, (std::uint64_t{1} << 52) + 1, 0x1p52 + 1},
      {0x1p63 - 1024, 0xfffffc00, (std::uint64_t{1} << 63) - 1024, 0x1p63 - 1024},
      {-0x1p63, 0, 0, -0x1p63},
      {0x1p63, 0, std::uint64_t{1} << 63, 0x1p63},
      {0x1p64 - 2048, 0, kMost - 2047, 0x1p64 - 2048},
      {0x1p64, 0, kMost, 0x1p64},
      {kInfinity, 0, kMost, kInfinity},
      {-kInfinity, 0, 0, -kInfinity},
  };
  for (Row const& row : rows) {
    EXPECT_EQ(tfl_rng::toLow32(row.value), row.low32) << row.value;
    EXPECT_EQ(tfl_rng::toUint64(row.value), row.uint64) << row.value;
    EXPECT_EQ(tfl_rng::truncateProduct(row.value), row.truncated) << row.value;
  }
  EXPECT_EQ(tfl_rng::toLow32(kNan), 0U);
  EXPECT_EQ(tfl_rng::toUint64(kNan), 0U);
}

}  // namespace
