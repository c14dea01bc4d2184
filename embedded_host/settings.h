#pragma once

// The settings store behind host/settings.h: TOML, a factory level compiled into the library and a
// user level from a file. A user value hides the factory value of the same group and key.

#include <filesystem>
#include <memory>
#include <optional>

#include "host/export.h"
#include "host/settings.h"

namespace embedded_host {

struct UserSettingsFile {
  std::filesystem::path path;
  bool mustExist = false;
};

// The user's settings file: $TVRNG_SETTINGS, which must be there, when that is set, else
// $XDG_CONFIG_HOME/tvrng/settings.toml, else ~/.config/tvrng/settings.toml. Nothing when none of
// the three variables is set.
TV_EXPORT std::optional<UserSettingsFile> userSettingsFile();

// Reads both levels. A file that is missing where none must be, /dev/null, or none, leaves the
// factory values.
// Host errors, all "TALVOR:settings:...": UnreadableFile for one that is there but out of reach or
// no file; TooLarge (64 KiB) and TooDeep (32 levels); BrokenFile for what is no TOML, with line and
// column; UnknownSetting for a name that the factory level does not have.
TV_EXPORT std::shared_ptr<settings::core::Settings> readSettings(
    std::optional<UserSettingsFile> const& userFile);

}  // namespace embedded_host
