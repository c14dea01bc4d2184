#pragma once

// Conversions between the text encodings that meet in the host.

#include <string>
#include <string_view>

#include "host/export.h"

namespace embedded_host {

// Ill-formed input becomes U+FFFD, so that nothing here fails.
TV_EXPORT std::u16string utf8ToUtf16(std::string_view utf8);
TV_EXPORT std::string utf16ToUtf8(std::u16string_view utf16);

// Equality without regard to ASCII case; a unit above 127 matches nothing but itself.
TV_EXPORT bool equalIgnoringAsciiCase(std::string_view a, std::string_view b) noexcept;

}  // namespace embedded_host
