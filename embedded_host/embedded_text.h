#pragma once

// Text files that are compiled into the library, so that it needs no files at run time.

#include <string_view>

namespace embedded_host {

extern const std::string_view kFactorySettings;  // factory_settings.toml
extern const std::string_view kMessages;         // messages.toml

}  // namespace embedded_host
