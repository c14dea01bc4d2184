#pragma once

#include <string_view>

namespace shell {

// The files of shell/help/, put in by the build.
extern std::string_view const kStreamHelp;
extern std::string_view const kLanguageHelp;

}  // namespace shell
