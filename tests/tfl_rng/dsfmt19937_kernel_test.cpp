// The dSFMT-19937 kernels equal their scalar form, bit for bit, on every instruction set.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "tests/support/every_target.h"
#include "tfl_rng/kernels/dsfmt19937.h"
#include "tfl_rng/kernels/dsfmt19937_reference.h"

namespace {

using namespace tfl_rng::dsfmt;

constexpr double kUntouched = -7;

// Any bits at all, exponents included.
Batch randomBatch() {
  Batch batch{};
  std::mt19937_64 bits(1);
  for (std::size_t i = 0; i < kWords; ++i) batch.words[i] = bits();
  for (auto& word : batch.lung) word = bits();
  return batch;
}

TEST(Dsfmt19937Kernel, FillEqualsTheScalarFormAtEveryPosition) {
  const Batch batch = randomBatch();
  every_target::run([&] {
    for (std::size_t position = 0; position < kWords; ++position) {
      const std::size_t most = kWords - position;
      for (std::size_t n : {std::size_t{0}, std::size_t{1}, most / 2, most - most / 9, most}) {
        std::vector<double> expected(n + 1, kUntouched), values(n + 1, kUntouched);
        reference::fill(batch.words + position, expected.data(), n);
        fill(batch, position, values.data(), n);
        ASSERT_EQ(values, expected) << position << ", " << n;
      }
    }
  });
}

TEST(Dsfmt19937Kernel, RegenerationEqualsTheScalarForm) {
  every_target::run([&] {
    Batch expectedBatch = randomBatch();
    Batch batch = expectedBatch;
    for (std::size_t n = 0; n <= kWords; ++n) {
      reference::regenerate(expectedBatch);
      std::vector<double> expected(n + 1, kUntouched), values(n + 1, kUntouched);
      reference::fill(expectedBatch.words, expected.data(), n);
      regenerateAndFill(batch, values.data(), n);
      ASSERT_TRUE(std::equal(batch.words, batch.words + kWords, expectedBatch.words)) << n;
      ASSERT_TRUE(std::equal(batch.lung, batch.lung + 2, expectedBatch.lung)) << n;
      ASSERT_EQ(values, expected) << n;
    }
  });
}

}  // namespace
