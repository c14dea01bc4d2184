#include "embedded_host/allocator.h"

#include <malloc.h>
#include <sys/mman.h>

#include <atomic>
#include <cstdlib>

#include "embedded_host/messages.h"
#include "host/allocator.h"

namespace {

constexpr std::size_t kAlignment = 64;
constexpr std::size_t kHugePage = std::size_t{2} << 20;
constexpr std::size_t kHugeFrom = std::size_t{4} << 20;

std::atomic<std::int64_t> liveBlocks{0};
std::atomic<std::int64_t> liveBytes{0};
std::atomic<std::int64_t> mostBytes{0};

// Requests of this thread until the one that is to fail; 0 when none is.
thread_local std::uint64_t requestsToFailure = 0;
thread_local bool failureHappened = false;

bool shouldFail() noexcept {
  if (requestsToFailure == 0 || --requestsToFailure > 0) return false;
  failureHappened = true;
  return true;
}

void noteAllocated(void* memory) noexcept {
  auto const bytes = static_cast<std::int64_t>(malloc_usable_size(memory));
  liveBlocks.fetch_add(1, std::memory_order_relaxed);
  std::int64_t const now = liveBytes.fetch_add(bytes, std::memory_order_relaxed) + bytes;
  std::int64_t most = mostBytes.load(std::memory_order_relaxed);
  while (now > most && !mostBytes.compare_exchange_weak(most, now, std::memory_order_relaxed)) {
  }
}

void noteFreed(void* memory) noexcept {
  auto const bytes = static_cast<std::int64_t>(malloc_usable_size(memory));
  liveBlocks.fetch_sub(1, std::memory_order_relaxed);
  liveBytes.fetch_sub(bytes, std::memory_order_relaxed);
}

void* allocate(std::size_t bytes) noexcept {
  if (bytes > static_cast<std::size_t>(PTRDIFF_MAX)) return nullptr;
  bool const huge = bytes >= kHugeFrom;
  std::size_t const alignment = huge ? kHugePage : kAlignment;
  void* memory = nullptr;
  if (posix_memalign(&memory, alignment, bytes > 0 ? bytes : 1) != 0) return nullptr;
  // Large results are written once from end to end; fewer page faults are most of their cost. Only
  // whole pages are asked for. Where the system has no huge pages, all stays as it was.
  if (huge) madvise(memory, bytes & ~(kHugePage - 1), MADV_HUGEPAGE);
  return memory;
}

}  // namespace

void* txMallocEx(std::size_t bytes) {
  void* const memory = shouldFail() ? nullptr : allocate(bytes);
  if (!memory) embedded_host::raiseHostError("TALVOR:nomem", bytes);
  noteAllocated(memory);
  return memory;
}

void txFreeEx(void* memory) noexcept {
  if (!memory) return;
  noteFreed(memory);
  std::free(memory);
}

namespace embedded_host {

AllocationCounts allocationCounts() noexcept {
  return {liveBlocks.load(std::memory_order_relaxed), liveBytes.load(std::memory_order_relaxed)};
}

std::int64_t peakBytes() noexcept { return mostBytes.load(std::memory_order_relaxed); }
void resetPeakBytes() noexcept {
  mostBytes.store(liveBytes.load(std::memory_order_relaxed), std::memory_order_relaxed);
}

FailingAllocation::FailingAllocation(std::uint64_t k) noexcept {
  requestsToFailure = k;
  failureHappened = false;
}

FailingAllocation::~FailingAllocation() { requestsToFailure = 0; }

bool FailingAllocation::happened() const noexcept { return failureHappened; }

}  // namespace embedded_host
