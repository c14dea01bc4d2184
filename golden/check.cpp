#include "golden/check.h"

#include <hwy/targets.h>

#include "golden/cases.h"
#include "golden/table.h"
#include "plugin_rng/parallel.h"

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
    for (int const threads : kThreads)
      if (threads == 1 || plugin_rng::kThreads) result.push_back({target, threads});
  return result;
}

Result check(Setting const& setting, std::string const& generator) {
  ForcedTarget const forced(setting.target);
  Result result;
  Hash all;
  Hash allGolden;
  plugin_rng::withThreads(static_cast<std::size_t>(setting.threads), [&] {
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
