#include "embedded_host/allocator.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

#include "embedded_host/large_blocks.h"
#include "embedded_host/messages.h"
#include "host/allocator.h"

#if defined(__SANITIZE_ADDRESS__)
#define TV_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TV_ADDRESS_SANITIZER 1
#endif
#endif

#ifdef TV_ADDRESS_SANITIZER
#include <malloc.h>
#endif

namespace {

using embedded_host::LargeBlocks;

constexpr std::size_t kAlignment = 64;

#if defined(TV_ADDRESS_SANITIZER) || defined(TV_NO_LARGE_BLOCKS)
constexpr std::size_t kLargeFrom = PTRDIFF_MAX;
#else
constexpr std::size_t kLargeFrom = std::size_t{4} << 20;
#endif

#ifdef TV_ADDRESS_SANITIZER

// The sanitizer watches exactly the blocks of the system's allocator.
void* allocateSmall(std::size_t bytes) noexcept {
  void* memory = nullptr;
  return posix_memalign(&memory, kAlignment, bytes > 0 ? bytes : 1) == 0 ? memory : nullptr;
}
std::size_t bytesOfSmall(void* memory) noexcept { return malloc_usable_size(memory); }
void freeSmall(void* memory) noexcept { std::free(memory); }

#else

// Stands in front of a small block. The system's aligned allocation takes six times as long as its
// plain one, more than anything else in making a scalar.
struct Header {
  void* start;  // of the system's block
  std::size_t bytes;
};

Header& headerOf(void* memory) noexcept { return static_cast<Header*>(memory)[-1]; }

void* allocateSmall(std::size_t bytes) noexcept {
  // Room for the header comes with the alignment where the system aligns to the header's size.
  constexpr std::size_t kAligned = std::min(alignof(std::max_align_t), sizeof(Header));
  auto* const start =
      static_cast<char*>(std::malloc(bytes + kAlignment + (sizeof(Header) - kAligned)));
  if (!start) return nullptr;
  char* const first = start + sizeof(Header);
  void* const memory = first + -reinterpret_cast<std::uintptr_t>(first) % kAlignment;
  headerOf(memory) = {start, bytes};
  return memory;
}
std::size_t bytesOfSmall(void* memory) noexcept { return headerOf(memory).bytes; }
void freeSmall(void* memory) noexcept { std::free(headerOf(memory).start); }

#endif

std::atomic<std::int64_t> liveBlocks{0};
std::atomic<std::int64_t> liveBytes{0};
std::atomic<std::int64_t> mostBytes{0};

// Requests of this thread until the one that is to fail; 0 when none is. Asked in every request, so
// without the function call that other models take.
[[gnu::tls_model("initial-exec")]] thread_local std::uint64_t requestsToFailure = 0;
[[gnu::tls_model("initial-exec")]] thread_local bool failureHappened = false;

bool shouldFail() noexcept {
  if (requestsToFailure == 0 || --requestsToFailure > 0) return false;
  failureHappened = true;
  return true;
}

void noteAllocated(std::size_t bytes) noexcept {
  liveBlocks.fetch_add(1, std::memory_order_relaxed);
  auto const added = static_cast<std::int64_t>(bytes);
  std::int64_t const now = liveBytes.fetch_add(added, std::memory_order_relaxed) + added;
  std::int64_t most = mostBytes.load(std::memory_order_relaxed);
  while (now > most && !mostBytes.compare_exchange_weak(most, now, std::memory_order_relaxed)) {
  }
}

void noteFreed(std::size_t bytes) noexcept {
  liveBlocks.fetch_sub(1, std::memory_order_relaxed);
  liveBytes.fetch_sub(static_cast<std::int64_t>(bytes), std::memory_order_relaxed);
}

void* allocate(std::size_t bytes) noexcept {
  if (bytes >= static_cast<std::size_t>(PTRDIFF_MAX) - LargeBlocks::kHugePage) return nullptr;
  bool const isLarge = bytes >= kLargeFrom;
  void* const memory = isLarge ? LargeBlocks::instance().allocate(bytes) : allocateSmall(bytes);
  if (memory)
    noteAllocated(isLarge ? LargeBlocks::instance().sizeOf(memory) : bytesOfSmall(memory));
  return memory;
}

}  // namespace

void* txMallocEx(std::size_t bytes) {
  void* const memory = shouldFail() ? nullptr : allocate(bytes);
  if (!memory) embedded_host::raiseHostError("TALVOR:nomem", bytes);
  return memory;
}

void txFreeEx(void* memory) noexcept {
  if (!memory) return;
  if (std::size_t const bytes = LargeBlocks::instance().sizeOf(memory)) {
    noteFreed(bytes);
    LargeBlocks::instance().release(memory);
  } else {
    noteFreed(bytesOfSmall(memory));
    freeSmall(memory);
  }
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
