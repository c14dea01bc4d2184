#include "vmstate/random_settings.h"

#include <memory>
#include <string_view>

#include "host/settings.h"
#include "host/tfl_rng.h"
#include "vmstate/generator_aliases.h"

namespace {

using settings::core::Settings;

constexpr std::string_view kGroup = "talvor.general.randomnumbers";
constexpr std::string_view kAlgorithm = "DefaultAlgorithm";
constexpr std::string_view kSeed = "DefaultSeed";
constexpr std::string_view kInEffect = "";
constexpr std::string_view kFactory = "factory";

std::u16string readAlgorithm(Settings const& group, std::string_view level) {
  std::u16string name = group.get<std::u16string>(kAlgorithm, level);
  canonicalGeneratorName(name);
  return name;
}

}  // namespace

DefaultStreamSettings readDefaultStreamSettings() {
  std::shared_ptr<Settings> const root = settings::standalone::getSettingsRoot();
  std::shared_ptr<Settings> const group = root->getSettingsByFullName(kGroup);
  if (!group) return {u"mt19937ar", 0};
  std::u16string algorithm = readAlgorithm(*group, kInEffect);
  return {std::move(algorithm), tfl_rng::toLow32(group->get<double>(kSeed, kInEffect))};
}

std::u16string readFactoryDefaultAlgorithm() {
  std::shared_ptr<Settings> const root = settings::standalone::getSettingsRoot();
  std::shared_ptr<Settings> const group = root->getSettingsByFullName(kGroup);
  // Without the group, the root reports the missing key in the store's own words.
  return readAlgorithm(group ? *group : *root, kFactory);
}
