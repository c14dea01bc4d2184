#pragma once

#include <string>
#include <string_view>

namespace shell {

// Writes `content` to `file`, all of it or nothing: a regular file is written beside itself and put
// in place when it is whole, so that an interrupted write leaves what was there. Pipes and devices
// are written directly. Raises a std::system_error that names the file.
void replaceFile(std::string const& file, std::string_view content);

// Raises the error that replaceFile would, as far as it can be known; leaves no trace.
void checkReplaceable(std::string const& file);

}  // namespace shell
