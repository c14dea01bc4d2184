// The MT19937 kernels equal their scalar form, bit for bit, on every instruction set.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "tests/support/every_target.h"
#include "tfl_rng/kernels/mt19937.h"
#include "tfl_rng/kernels/mt19937_reference.h"

namespace {

using namespace tfl_rng::mt19937;
using tfl_rng::Full, tfl_rng::Reduced;

constexpr double kUntouched = -7;

Batch randomBatch() {
  Batch batch{};
  std::mt19937 bits(1);
  for (std::size_t i = 0; i < kWords; ++i) batch.words[i] = static_cast<std::uint32_t>(bits());
  // Zeros, which are the special case of res53, at even and odd places.
  for (std::size_t i : {0, 1, 64, 65, 331, 332, 622, 623}) batch.words[i] = 0;
  return batch;
}

template <class Precision>
class Mt19937Kernel : public testing::Test {
 protected:
  using P = Precision;
  static constexpr std::size_t kMost = kWords / P::kStepsEach;
};

using Precisions = testing::Types<Full, Reduced>;
TYPED_TEST_SUITE(Mt19937Kernel, Precisions);

TYPED_TEST(Mt19937Kernel, FillEqualsTheScalarFormAtEveryPosition) {
  constexpr std::size_t each = TypeParam::kStepsEach;
  const Batch batch = randomBatch();
  every_target::run([&] {
    for (std::size_t position = 0; position < kWords; ++position) {
      const std::size_t most = (kWords - position) / each;
      for (std::size_t n : {std::size_t{0}, std::size_t{1}, most / 2, most - most / 9, most}) {
        std::vector<double> expected(n + 1, kUntouched), values(n + 1, kUntouched);
        reference::fill(TypeParam{}, batch.words + position, expected.data(), n);
        fill(TypeParam{}, batch, position, values.data(), n);
        ASSERT_EQ(values, expected) << position << ", " << n;
      }
    }
  });
}

TYPED_TEST(Mt19937Kernel, RegenerationEqualsTheScalarForm) {
  every_target::run([&] {
    Batch expectedBatch = randomBatch();
    Batch batch = expectedBatch;
    for (std::size_t n = 0; n <= this->kMost; ++n) {
      reference::regenerate(expectedBatch.words);
      std::vector<double> expected(n + 1, kUntouched), values(n + 1, kUntouched);
      reference::fill(TypeParam{}, expectedBatch.words, expected.data(), n);
      regenerateAndFill(TypeParam{}, batch, values.data(), n);
      ASSERT_TRUE(std::equal(batch.words, batch.words + kWords, expectedBatch.words)) << n;
      ASSERT_EQ(values, expected) << n;
    }
  });
}

TEST(Mt19937Temper, KernelEqualsTheScalarFormAtEveryPosition) {
  const Batch batch = randomBatch();
  every_target::run([&] {
    for (std::size_t position = 0; position < kWords; ++position) {
      const std::size_t n = (kWords - position) / 2;
      std::vector<std::uint64_t> expected(n + 1, 7), values(n + 1, 7);
      reference::temper(batch.words + position, expected.data(), n);
      temper(batch, position, values.data(), n);
      ASSERT_EQ(values, expected) << position;
    }
  });
}

}  // namespace
