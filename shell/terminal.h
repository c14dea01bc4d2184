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

}  // namespace shell
