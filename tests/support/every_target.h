#pragma once

// Runs a body once on every instruction set that this machine has and the kernels are built for.

#include <gtest/gtest.h>

#include <hwy/highway.h>

namespace every_target {

template <class Body>
void run(Body body) {
  const auto targets = hwy::SupportedAndGeneratedTargets();
  ASSERT_FALSE(targets.empty());
  for (const int64_t target : targets) {
    SCOPED_TRACE(hwy::TargetName(target));
    hwy::SetSupportedTargetsForTest(target);
    body();
  }
  hwy::SetSupportedTargetsForTest(0);
}

}  // namespace every_target
