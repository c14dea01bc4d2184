#include "embedded_host/allocator.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "embedded_host/array.h"
#include "embedded_host/host_allocator.h"
#include "host/allocator.h"
#include "tests/support/identifiers.h"

using namespace embedded_host;

using testing_support::identifierOf;

namespace {

TEST(Allocator, AlignsEveryBlockForAnyVectorType) {
  for (std::size_t bytes : {0, 1, 63, 64, 100, 4096, 100'000, 5'000'000}) {
    txBuffer<char> const block = txMakeBuffer<char>(bytes);
    ASSERT_NE(block.get(), nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.get()) % 64, 0u) << bytes;
    // Every byte is there to be written; a sanitizer sees one too many.
    std::fill_n(block.get(), bytes, 'x');
  }
}

TEST(Allocator, CountsLiveBlocksAndPeak) {
  AllocationCounts const before = allocationCounts();
  resetPeakBytes();
  std::int64_t const base = peakBytes();
  {
    txBuffer<double> const one = txMakeBuffer<double>(1'000'000);
    EXPECT_EQ(allocationCounts().liveBlocks, before.liveBlocks + 1);
    EXPECT_GE(allocationCounts().liveBytes, before.liveBytes + 8'000'000);
  }
  EXPECT_EQ(allocationCounts().liveBlocks, before.liveBlocks);
  EXPECT_EQ(allocationCounts().liveBytes, before.liveBytes);
  EXPECT_GE(peakBytes() - base, 8'000'000);
  // Large blocks are rounded up to huge pages.
  EXPECT_LT(peakBytes() - base, 8'000'000 + 2 * (2 << 20));
}

#ifndef __SANITIZE_ADDRESS__
TEST(Allocator, ReleasedLargeBlocksServeTheNextRequestOfTheirSize) {
  constexpr std::size_t kBytes = 41 << 20;
  void* const first = txMallocEx(kBytes);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(first) % (2 << 20), 0u);
  void* const second = txMallocEx(kBytes);
  EXPECT_NE(first, second);
  std::memset(first, 'x', kBytes);
  txFreeEx(first);
  // A much smaller request must not tie up a large block.
  void* const small = txMallocEx(16 << 20);
  EXPECT_NE(small, first);
  void* const again = txMallocEx(kBytes - 4096);
  EXPECT_EQ(again, first);
  std::memset(again, 'y', kBytes - 4096);
  for (void* block : {second, small, again}) txFreeEx(block);
}

// As often as the blocks that are kept would fill all room for them.
TEST(Allocator, LargeBlocksThatServeAgainAreNoLongerKept) {
  void* const first = txMallocEx(64 << 20);
  txFreeEx(first);
  for (int i = 0; i < 20; ++i) {
    void* const again = txMallocEx(64 << 20);
    EXPECT_EQ(again, first) << i;
    txFreeEx(again);
  }
}
#endif

// Blocks may be released on another thread than the one that asked for them.
TEST(Allocator, ServesSeveralThreads) {
  AllocationCounts const before = allocationCounts();
  std::array<std::vector<void*>, 4> blocks;
  std::vector<std::thread> threads;
  for (auto& own : blocks) {
    threads.emplace_back([&own] {
      for (std::size_t i = 0; i < 200; ++i) own.push_back(txMallocEx(i % 20 == 0 ? 5 << 20 : i));
    });
  }
  for (auto& thread : threads) thread.join();
  threads.clear();
  for (std::size_t t = 0; t < blocks.size(); ++t) {
    threads.emplace_back([&own = blocks[(t + 1) % blocks.size()]] {
      for (void* block : own) txFreeEx(block);
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(allocationCounts().liveBlocks, before.liveBlocks);
  EXPECT_EQ(allocationCounts().liveBytes, before.liveBytes);
}

TEST(Allocator, FailsExactlyTheRequestItIsToldTo) {
  FailingAllocation const second(2);
  txBuffer<char> const first = txMakeBuffer<char>(1);
  EXPECT_FALSE(second.happened());
  EXPECT_EQ(identifierOf([] { txMakeBuffer<char>(1); }), "TALVOR:nomem");
  EXPECT_TRUE(second.happened());
  EXPECT_EQ(identifierOf([] { txMakeBuffer<char>(1); }), "no error");
}

TEST(Allocator, FailureOfOneThreadLeavesTheOthersAlone) {
  FailingAllocation const next(1);
  std::string elsewhere;
  std::thread([&] { elsewhere = identifierOf([] { txMakeBuffer<char>(1); }); }).join();
  EXPECT_EQ(elsewhere, "no error");
  EXPECT_EQ(identifierOf([] { txMakeBuffer<char>(1); }), "TALVOR:nomem");
}

TEST(Allocator, RequestsBeyondTheAddressSpaceFail) {
  EXPECT_EQ(identifierOf([] { txMallocEx(SIZE_MAX); }), "TALVOR:nomem");
  EXPECT_EQ(identifierOf([] { txMakeBuffer<double>(SIZE_MAX / 4); }), "TALVOR:nomem");
  EXPECT_EQ(identifierOf([] { HostAllocator<double>().allocate(SIZE_MAX / 4); }), "TALVOR:nomem");
}

// Each operation below allocates several times; whichever request fails, nothing may stay behind
// and the operands stay whole.
TEST(Allocator, FailedArrayOperationsLeaveNothingBehind) {
  txArrayPtr const cell = txCreateCell(std::vector<std::uint64_t>{1, 3});
  cell->setCell(0, makeRow({1., 2., 3., 4.}));
  cell->setCell(2, makeString(u"a text too long to live inside its string object"));
  txArrayPtr const deep = makeZeros(std::vector<std::uint64_t>{2, 1, 2, 1, 2}, txClassInt32);
  std::int64_t const before = allocationCounts().liveBlocks;
  std::uint64_t k = 0;
  for (bool failed = true; failed;) {
    FailingAllocation const failure(++k);
    std::string const error = identifierOf([&] {
      txArrayPtr const copy = txShare(*cell);
      copy->setCell(1, txShare(*deep));
      txArrayPtr const numbers = txToDouble(*copy->cell(1));
      numbers->dataAs<double>()[7] = 1;
      txArrayPtr const sparse = toSparse(*makeRow({0., 1., 2.}));
      txToFull(*sparse);
    });
    failed = failure.happened();
    EXPECT_EQ(error, failed ? "TALVOR:nomem" : "no error") << k;
    EXPECT_EQ(allocationCounts().liveBlocks, before) << k;
  }
  EXPECT_GT(k, 10u);
  EXPECT_EQ(cell->cell(1), nullptr);
}

}  // namespace
