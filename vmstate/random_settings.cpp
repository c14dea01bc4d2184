#include "vmstate/random_settings.h"

#include <algorithm>
#include <memory>
#include <string_view>

#include "host/settings.h"
#include "host/tfl_rng.h"
#include "tfl_rng/generator_catalogue.h"

namespace {

using settings::core::Settings;

constexpr std::string_view kGroup = "talvor.general.randomnumbers";
constexpr std::string_view kAlgorithm = "DefaultAlgorithm";
constexpr std::string_view kSeed = "DefaultSeed";
constexpr std::string_view kInEffect = "";
constexpr std::string_view kFactory = "factory";

// Replaces a generator's short name, spelled exactly so, by its canonical name; leaves all other
// names alone.
void canonicalGeneratorName(std::u16string& name) {
  for (tfl_rng::Generator const& generator : tfl_rng::generators()) {
    std::string_view const shortName = generator.traits.shortName;
    if (!shortName.empty() && std::ranges::equal(name, shortName)) {
      std::string_view const canonical = generator.name;
      name.assign(canonical.begin(), canonical.end());
      return;
    }
  }
}

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
