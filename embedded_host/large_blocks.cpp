#include "embedded_host/large_blocks.h"

#include <sys/mman.h>

#include <cstdint>
#include <new>

namespace embedded_host {

namespace {

// A mapping of `bytes`, a multiple of the huge page, aligned to it; null when there is none.
void* mapAligned(std::size_t bytes) noexcept {
  constexpr std::size_t kPage = LargeBlocks::kHugePage;
  void* const mapped =
      mmap(nullptr, bytes + kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) return nullptr;
  auto* const first = static_cast<char*>(mapped);
  std::size_t const before = -reinterpret_cast<std::uintptr_t>(first) % kPage;
  if (before > 0) munmap(first, before);
  if (before < kPage) munmap(first + before + bytes, kPage - before);
  // Where the system has no huge pages, all stays as it was.
  madvise(first + before, bytes, MADV_HUGEPAGE);
  return first + before;
}

}  // namespace

LargeBlocks& LargeBlocks::instance() {
  static LargeBlocks& blocks = *new LargeBlocks;
  return blocks;
}

void* LargeBlocks::allocate(std::size_t bytes) noexcept {
  bytes = (bytes + kHugePage - 1) / kHugePage * kHugePage;
  std::lock_guard const lock(mutex_);
  Block block = takeKept(bytes);
  if (!block.memory) block = {mapAligned(bytes), bytes};
  while (!block.memory && !kept_.empty()) {
    dropOldest();
    block.memory = mapAligned(bytes);
  }
  if (!block.memory) return nullptr;
  try {
    used_.emplace(block.memory, block.bytes);
  } catch (std::bad_alloc const&) {
    munmap(block.memory, block.bytes);
    return nullptr;
  }
  return block.memory;
}

std::size_t LargeBlocks::sizeOf(void const* memory) noexcept {
  if (reinterpret_cast<std::uintptr_t>(memory) % kHugePage != 0) return 0;
  std::lock_guard const lock(mutex_);
  auto const found = used_.find(memory);
  return found == used_.end() ? 0 : found->second;
}

void LargeBlocks::release(void* memory) noexcept {
  std::lock_guard const lock(mutex_);
  auto const found = used_.find(memory);
  Block const block{memory, found->second};
  used_.erase(found);
  if (block.bytes > kMostBytesKept) {
    munmap(block.memory, block.bytes);
    return;
  }
  madvise(block.memory, block.bytes, MADV_FREE);
  while (kept_.size() >= kMostKept || bytesKept_ + block.bytes > kMostBytesKept) dropOldest();
  kept_.reserve(kMostKept);
  kept_.push_back(block);
  bytesKept_ += block.bytes;
}

// The smallest kept block that is large enough and wastes less than a quarter; null without one.
LargeBlocks::Block LargeBlocks::takeKept(std::size_t bytes) noexcept {
  auto best = kept_.end();
  for (auto at = kept_.begin(); at != kept_.end(); ++at) {
    bool const fits = at->bytes >= bytes && at->bytes - bytes <= bytes / 4;
    if (fits && (best == kept_.end() || at->bytes < best->bytes)) best = at;
  }
  if (best == kept_.end()) return {nullptr, 0};
  Block const block = *best;
  kept_.erase(best);
  bytesKept_ -= block.bytes;
  return block;
}

void LargeBlocks::dropOldest() noexcept {
  Block const oldest = kept_.front();
  kept_.erase(kept_.begin());
  bytesKept_ -= oldest.bytes;
  munmap(oldest.memory, oldest.bytes);
}

}  // namespace embedded_host
