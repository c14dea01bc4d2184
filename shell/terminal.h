#pragma once

// What is known of the terminal.

#include <cstddef>
#include <string>
#include <string_view>

namespace shell {

// Columns of the terminal behind a file descriptor: as the terminal says, else $COLUMNS, else 80.
int terminalWidth(int descriptor);

// Columns that UTF-8 text takes; every code point counts as one.
std::size_t displayWidth(std::string_view utf8);

// Whether a byte of UTF-8 goes on with the character before it.
inline bool continues(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

}  // namespace shell
