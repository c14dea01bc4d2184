// The mrg32k3a kernels and their quick scalar form against the recurrence in plain integers.

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/every_target.h"
#include "tfl_rng/kernels/mrg32k3a.h"
#include "tfl_rng/kernels/mrg32k3a_reference.h"

namespace {

namespace kernels = tfl_rng::mrg32k3a_steps;
using kernels::Words;

constexpr std::uint32_t kM1 = 4294967087;
constexpr std::uint32_t kM2 = 4294944443;
constexpr double kUntouched = -7;

constexpr Words kStarts[] = {
    {12345, 12345, 12345, 12345, 12345, 12345},
    {1, 0, 0, 1, 0, 0},
    {0, 0, 1, 0, 0, 1},
    {0, 1, 0, 0, kM2 - 1, 0},
    {kM1 - 1, 0, 0, 0, 0, kM2 - 1},
    {0, kM1 - 1, 0, kM2 - 1, 0, 0},
    {kM1 - 1, kM1 - 1, kM1 - 1, kM2 - 1, kM2 - 1, kM2 - 1},
    {0x80000000, 0x7fffffff, kM1 / 2, kM2 / 2, kM2 / 2 + 1, 0x80000000},
    {0xffff, 0x10000, 0xffff0000, 0xffff, 0x10000, 0xffff0000},
    // The first two steps make 1 and the number after it of the sum before it is reduced.
    {0, 0, 353412662, 0, 1, 0},
    {0, 0, 4100629002, 0, 1, 0},
};

double plainStep(Words& s) {
  const auto x = static_cast<std::uint32_t>(
      (std::uint64_t{1403580} * s[1] + std::uint64_t{810728} * (kM1 - s[0])) % kM1);
  const auto y = static_cast<std::uint32_t>(
      (std::uint64_t{527612} * s[5] + std::uint64_t{1370589} * (kM2 - s[3])) % kM2);
  s = {s[1], s[2], x, s[4], s[5], y};
  return (x > y ? x - y : x - y + kM1) * 2.328306549295727688e-10;
}

TEST(Mrg32k3aScalar, FoldsEqualDivision) {
  for (Words const& start : kStarts) {
    Words words = start, plain = start;
    for (int i = 0; i < 20000; ++i) {
      ASSERT_EQ(kernels::reference::step(words), plainStep(plain)) << i;
      ASSERT_EQ(words, plain) << i;
    }
  }
}

// Of a modulo the prime m.
std::uint32_t inverse(std::uint64_t a, std::uint64_t m) {
  std::uint64_t result = 1;
  for (std::uint64_t exponent = m - 2; exponent != 0; exponent /= 2, a = a * a % m)
    if (exponent % 2 != 0) result = result * a % m;
  return static_cast<std::uint32_t>(result);
}

// The words from which so many steps lead to these.
Words before(Words words, std::size_t steps) {
  static const std::uint64_t inverse1 = inverse(810728, kM1), inverse2 = inverse(1370589, kM2);
  for (; steps != 0; --steps) {
    auto const& [x0, x1, x2, y0, y1, y2] = words;
    const std::uint64_t x = (std::uint64_t{1403580} * x0 + kM1 - x2) % kM1 * inverse1 % kM1;
    const std::uint64_t y = (std::uint64_t{527612} * y1 + kM2 - y2) % kM2 * inverse2 % kM2;
    words = {static_cast<std::uint32_t>(x), x0, x1, static_cast<std::uint32_t>(y), y0, y1};
  }
  return words;
}

template <class Precision>
class Mrg32k3aKernel : public testing::Test {
 protected:
  static void expectEqual(Words const& start, std::size_t n) {
    std::vector<double> expected(n + 1, kUntouched), actual(n + 1, kUntouched);
    Words last = start, words = start;
    kernels::reference::fill(Precision{}, last, expected.data(), n);
    kernels::fill(tfl_rng::Form{std::is_same_v<Precision, tfl_rng::Full>}, words, actual.data(), n);
    ASSERT_EQ(actual, expected) << n;
    ASSERT_EQ(words, last) << n;
  }
};

using Precisions = testing::Types<tfl_rng::Reduced, tfl_rng::Full>;
TYPED_TEST_SUITE(Mrg32k3aKernel, Precisions);

// Every count around the blocks of all lengths.
TYPED_TEST(Mrg32k3aKernel, EqualsTheScalarForm) {
  every_target::run([] {
    for (std::size_t n = 0; n < 400; ++n) TestFixture::expectEqual(kStarts[n % 11], n);
    for (std::size_t n = 1000; n < 1300; ++n) TestFixture::expectEqual(kStarts[n % 11], n);
    for (std::size_t n = 2040; n < 2240; n += 3) TestFixture::expectEqual(kStarts[n % 11], n);
  });
}

TYPED_TEST(Mrg32k3aKernel, EqualsTheScalarFormFromExtremeWords) {
  every_target::run([] {
    for (Words const& start : kStarts) TestFixture::expectEqual(start, 20000);
  });
}

// The first step makes terms next to 0, the modulus and its half, where a quotient in doubles may
// be one off. All but one of the terms behind it are 0: products of both signs.
TYPED_TEST(Mrg32k3aKernel, QuotientsNextToAnIntegerDoNotShow) {
  const auto quotient = [](std::uint64_t term, std::uint64_t a, std::uint64_t m) {
    return static_cast<std::uint32_t>(term * inverse(a, m) % m);
  };
  every_target::run([&] {
    for (std::uint64_t distance = 0; distance < 40; ++distance) {
      for (const std::uint64_t x : {distance, kM1 - 1 - distance}) {
        for (const std::uint64_t y : {distance, kM2 - 1 - distance, kM2 / 2 - 20 + distance}) {
          const std::uint32_t x1 = quotient(x, 1403580, kM1);
          const std::uint32_t x0 = quotient(x, kM1 - 810728, kM1);
          const std::uint32_t y2 = quotient(y, 527612, kM2);
          const std::uint32_t y0 = quotient(y, kM2 - 1370589, kM2);
          TestFixture::expectEqual({0, x1, 1, 0, 1, y2}, 64);
          TestFixture::expectEqual({x0, 0, 1, y0, 1, 0}, 64);
        }
      }
    }
  });
}

// A block that ends in a term of 0, which the quotient may leave as the modulus: a negative
// multiple of it was divided.
TYPED_TEST(Mrg32k3aKernel, TermEqualToItsModulusIsReadAsZero) {
  every_target::run([] {
    for (const std::size_t n : {40, 128, 1024}) {
      for (std::uint32_t x = 1; x < 20; ++x)
        TestFixture::expectEqual(before({x, 7, 0, 1, x, 0}, n * TypeParam::kStepsEach), n);
    }
  });
}

}  // namespace
