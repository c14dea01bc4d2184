#pragma once

// The settings store behind host/settings.h: TOML, a factory level compiled into the library and a
// user level from a file. A user value hides the factory value of the same group and key.

#include <filesystem>
#include <memory>
#include <optional>

#include "host/export.h"
#include "host/settings.h"

namespace embedded_host {

// The user's settings file: $TVRNG_SETTINGS when that is set, else
// $XDG_CONFIG_HOME/tvrng/settings.toml, else ~/.config/tvrng/settings.toml. Nothing when none of
// the three variables is set.
TV_EXPORT std::optional<std::filesystem::path> userSettingsFile();

// Reads both levels. A missing file, or none, leaves the factory values. A file that cannot be read
// is the host error "TALVOR:settings:UnreadableFile", one that is no TOML
// "TALVOR:settings:BrokenFile" with file, line and column.
TV_EXPORT std::shared_ptr<settings::core::Settings> readSettings(
    std::optional<std::filesystem::path> const& userFile);

}  // namespace embedded_host
