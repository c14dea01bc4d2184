#pragma once

// Memory for large arrays, on huge pages and straight from the system.

#include <cstddef>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace embedded_host {

#ifdef TV_NO_LARGE_BLOCKS

// None: the system's allocator serves all.
class LargeBlocks {
 public:
  static constexpr std::size_t kHugePage = 1;
  static LargeBlocks instance() noexcept { return {}; }
  static void* allocate(std::size_t) noexcept { return nullptr; }
  static std::size_t sizeOf(void const*) noexcept { return 0; }
  static void release(void*) noexcept {}
};

#else

// Large results are written once from end to end, and then most of their cost is the system's: a
// page fault for every 4 KiB, which huge pages make one for every 2 MiB, and clearing the pages.
// Released blocks are therefore kept for the next request of about their size. While they are kept,
// the system may take back their pages whenever it is short of memory.
class LargeBlocks {
 public:
  static constexpr std::size_t kHugePage = std::size_t{2} << 20;

  // The process's only one; it is never destroyed, since arrays may go after the last static
  // object.
  static LargeBlocks& instance();

  // `bytes` bytes or more, aligned to a huge page; null when the system has none left.
  void* allocate(std::size_t bytes) noexcept;
  // The size of a block that is in use; 0 for every other address.
  std::size_t sizeOf(void const* memory) noexcept;
  // Takes back a block that is in use.
  void release(void* memory) noexcept;

 private:
  struct Block {
    void* memory;
    std::size_t bytes;
  };
  static constexpr std::size_t kMostKept = 8;
  static constexpr std::size_t kMostBytesKept = std::size_t{512} << 20;

  Block takeKept(std::size_t bytes) noexcept;
  void dropOldest() noexcept;

  std::mutex mutex_;
  std::unordered_map<void const*, std::size_t> used_;
  std::vector<Block> kept_;  // oldest first
  std::size_t bytesKept_ = 0;
};

#endif

}  // namespace embedded_host
