#pragma once

// The host's string helpers.

#include <cstddef>
#include <string>
#include <string_view>

#include "host/export.h"

// Copies at most `limit` characters of `source` (null counts as empty) and ends with a NUL, so
// that `target` must hold limit + 1.
TV_EXPORT void utStrncpy(char* target, char const* source, std::size_t limit) noexcept;

// UTF-16 to ASCII; a code unit above 127 is the host error "TALVOR:string:NotAscii".
TV_EXPORT std::string utToAscii(std::u16string_view text);
