#include "embedded_host/settings.h"

#include <toml++/toml.h>

#include <cstdlib>

#include "embedded_host/embedded_text.h"
#include "embedded_host/messages.h"
#include "embedded_host/settings_file.h"
#include "embedded_host/text.h"
#include "embedded_host/vm_context.h"

settings::core::Settings::~Settings() = default;

namespace embedded_host {

namespace {

struct Levels {
  toml::table factory;
  toml::table user;
};

// A group of the store; the root is the group with the empty name.
class Group final : public settings::core::Settings {
 public:
  Group(std::shared_ptr<Levels const> levels, std::string name)
      : levels_(std::move(levels)), name_(std::move(name)) {}

  std::shared_ptr<Settings> getSettingsByFullName(std::string_view name) const override {
    std::string const full = name_.empty() ? std::string(name) : name_ + '.' + std::string(name);
    if (!tableOf(levels_->factory, full)) return nullptr;
    return std::make_shared<Group>(levels_, full);
  }

 protected:
  std::u16string getText(std::string_view key, std::string_view level) const override {
    if (auto const text = find(key, level).value_exact<std::string>()) return utf8ToUtf16(*text);
    raiseHostError("TALVOR:settings:WrongType", name_, key, "text");
  }

  double getNumber(std::string_view key, std::string_view level) const override {
    auto const value = find(key, level);
    if (value.is_number()) return *value.value<double>();
    raiseHostError("TALVOR:settings:WrongType", name_, key, "a number");
  }

 private:
  static toml::table const* tableOf(toml::table const& level, std::string_view name) {
    return name.empty() ? &level : level.at_path(name).as_table();
  }

  toml::node_view<toml::node const> find(std::string_view key, std::string_view level) const {
    if (!level.empty() && level != "factory") {
      raiseHostError("TALVOR:settings:UnknownLevel", level);
    }
    auto const in = [&](toml::table const& values) {
      toml::table const* const group = tableOf(values, name_);
      return toml::node_view<toml::node const>(group ? group->get(key) : nullptr);
    };
    if (level.empty()) {
      if (auto const value = in(levels_->user)) return value;
    }
    auto const value = in(levels_->factory);
    if (!value) raiseHostError("TALVOR:settings:UnknownKey", name_, key);
    return value;
  }

  std::shared_ptr<Levels const> levels_;
  std::string name_;
};

}  // namespace

std::optional<UserSettingsFile> userSettingsFile() {
  auto const variable = [](char const* name) -> std::optional<std::filesystem::path> {
    char const* const value = std::getenv(name);
    return value && *value ? std::optional<std::filesystem::path>(value) : std::nullopt;
  };
  constexpr char kFile[] = "tvrng/settings.toml";
  if (auto const file = variable("TVRNG_SETTINGS")) return UserSettingsFile{*file, true};
  if (auto const folder = variable("XDG_CONFIG_HOME")) return UserSettingsFile{*folder / kFile};
  if (auto const home = variable("HOME")) return UserSettingsFile{*home / ".config" / kFile};
  return std::nullopt;
}

std::shared_ptr<settings::core::Settings> readSettings(
    std::optional<UserSettingsFile> const& userFile) {
  auto levels = std::make_shared<Levels>();
  levels->factory = toml::parse(kFactorySettings);
  if (userFile) levels->user = readSettingsFile(*userFile, levels->factory);
  return std::make_shared<Group>(std::move(levels), "");
}

}  // namespace embedded_host

std::shared_ptr<settings::core::Settings> settings::standalone::getSettingsRoot() {
  using namespace embedded_host;
  VmContext* const vm = VmContext::current();
  return vm ? vm->settings() : readSettings(userSettingsFile());
}
