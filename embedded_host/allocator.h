#pragma once

// Control of the host's allocator (host/allocator.h) for tests and measurements.

#include <cstddef>
#include <cstdint>

#include "host/export.h"

namespace embedded_host {

// What the process holds of the host's memory. From 4 MiB on a block counts with its huge pages.
struct AllocationCounts {
  std::int64_t liveBlocks;
  std::int64_t liveBytes;
};
TV_EXPORT AllocationCounts allocationCounts() noexcept;

// The most bytes that were live at once since the last resetPeakBytes.
TV_EXPORT std::int64_t peakBytes() noexcept;
TV_EXPORT void resetPeakBytes() noexcept;

// Makes one request of this thread fail with "TALVOR:nomem": the k-th from now, 1 being the next.
// The failure happens once; leaving the scope calls it off. Scopes do not nest.
class TV_EXPORT FailingAllocation {
 public:
  explicit FailingAllocation(std::uint64_t k) noexcept;
  ~FailingAllocation();
  FailingAllocation(FailingAllocation const&) = delete;
  FailingAllocation& operator=(FailingAllocation const&) = delete;

  // True once the request has failed. A test that counts k up until this stays false has seen
  // every request of the code under test fail.
  bool happened() const noexcept;
};

}  // namespace embedded_host
