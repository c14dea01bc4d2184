#include "golden/check.h"

#include <hwy/targets.h>
#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include "golden/cases.h"
#include "golden/table.h"

namespace golden {

namespace {

constexpr int kThreads[] = {1, 2, 5, 16};

// All kernels of the process run for this target alone.
class ForcedTarget {
 public:
  explicit ForcedTarget(std::int64_t target) { hwy::SetSupportedTargetsForTest(target); }
  ~ForcedTarget() { hwy::SetSupportedTargetsForTest(0); }
  ForcedTarget(ForcedTarget const&) = delete;
  ForcedTarget& operator=(ForcedTarget const&) = delete;
};

}  // namespace

std::string Setting::targetName() const { return hwy::TargetName(target); }

std::vector<Setting> settings() {
  std::vector<Setting> result;
  for (std::int64_t const target : hwy::SupportedAndGeneratedTargets())
    for (int const threads : kThreads) result.push_back({target, threads});
  return result;
}

Result check(Setting const& setting, std::string const& generator) {
  ForcedTarget const forced(setting.target);
  // Its threads stay from one setting to the next: those that are ending count where a user may
  // have few.
  static tbb::task_scheduler_handle const kept{tbb::attach{}};
  // As many threads as told, also where the machine has fewer cores.
  tbb::global_control const limit(tbb::global_control::max_allowed_parallelism,
                                  static_cast<std::size_t>(setting.threads));
  tbb::task_arena arena(setting.threads);
  Result result;
  Hash all;
  Hash allGolden;
  arena.execute([&] {
    computeRows(generator, [&](std::string_view name, std::uint64_t drawn) {
      ++result.rows;
      auto const golden = goldenHash(generator, name);
      std::uint64_t const expected = golden.value_or(0);
      all.add(&drawn, 1, sizeof drawn);
      allGolden.add(&expected, 1, sizeof expected);
      if (golden != drawn)
        result.differences.push_back({setting, generator, std::string(name), drawn, golden});
    });
  });
  result.hash = all.value();
  result.goldenHash = allGolden.value();
  return result;
}

}  // namespace golden
