#pragma once

// Numbers and texts as they are written in a program, and the letters that words are made of.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "language/token.h"

namespace language {

inline bool isDigit(char c) { return c >= '0' && c <= '9'; }
inline bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

// Places fit 32 bits, since the length of the source is limited.
inline SourceSpan span(std::size_t begin, std::size_t end) {
  return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end)};
}

// The number or the text that begins at `begin`, its span up to where it ends. Raise a SourceError
// for what is none: 1x, 0x, more bits than the class has; a text that is never closed, an unknown
// escape, invalid UTF-8.
Token readNumber(std::string_view source, std::size_t begin);
Token readText(std::string_view source, std::size_t begin);

}  // namespace language
