#pragma once

// The user's settings file. Only settings.cpp sees it.

#include <toml++/toml.h>

#include "embedded_host/settings.h"

namespace embedded_host {

// What the file sets, each setting one that `known` has too. Errors: those of readSettings.
toml::table readSettingsFile(UserSettingsFile const& file, toml::table const& known);

}  // namespace embedded_host
