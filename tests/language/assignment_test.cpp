// Assignments to elements work in place.

#include <gtest/gtest.h>

#include "embedded_host/allocator.h"
#include "tests/support/calls.h"

namespace {

using embedded_host::allocationCounts;

struct Loop {
  char const* before;
  char const* loop;
};
void PrintTo(Loop const& loop, std::ostream* out) { *out << loop.before << loop.loop; }

class InPlace : public testing_support::VmTest, public testing::WithParamInterface<Loop> {};

TEST_P(InPlace, NeedsNoRoomForACopy) {
  vm.evaluate(GetParam().before);
  std::int64_t const before = allocationCounts().liveBytes;
  embedded_host::resetPeakBytes();
  vm.evaluate(GetParam().loop);
  EXPECT_LT(embedded_host::peakBytes() - before, 60000);
}

INSTANTIATE_TEST_SUITE_P(
    Language, InPlace,
    testing::Values(Loop{"x = zeros(1,1e5);", "for k = 1:10, x(k) = k; end"},
                    Loop{"x = zeros(100,1000);", "for k = 1:10, x(k,7) = 1; x(:,9) = 2; end"},
                    Loop{"x = zeros(1,1e5);", "for k = 1:10, x(k) = true; x(k) = 1; x, end"},
                    Loop{"c = cell(1,2e4);", "for k = 1:10, c{k} = k; end"},
                    Loop{"c = cell(1,2e4);", "for k = 1:10, c(k) = {k}; end"},
                    Loop{"x = zeros(1,1e5); x(end+1) = 1;", "for k = 1:10, x(end+1) = k; end"},
                    Loop{"x = 1:1e5;", "for k = x, if k > 3, break, end, end"},
                    Loop{"", "for k = 1:1e15, if k > 3, break, end, end"}));

}  // namespace
