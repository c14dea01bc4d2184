#pragma once

// Strict reading of UTF-8 source text.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace language {

// The code point that starts at text[position], and the position after it; nothing where the bytes
// are not valid UTF-8 (overlong forms, surrogates and truncation included).
struct DecodedPoint {
  char32_t point;
  std::size_t next;
};
std::optional<DecodedPoint> decodeUtf8(std::string_view text, std::size_t position);

void appendUtf16(std::u16string& target, char32_t point);

}  // namespace language
