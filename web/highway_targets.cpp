// What Highway's library says at run time where there is one instruction set only.

#include <hwy/targets.h>

namespace hwy {

std::int64_t SupportedTargets() { return HWY_TARGETS; }
void SetSupportedTargetsForTest(std::int64_t /*targets*/) {}
ChosenTarget& GetChosenTarget() {
  static ChosenTarget chosen;
  return chosen;
}

}  // namespace hwy
