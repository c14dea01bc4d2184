#pragma once

// The golden table: what every row must be, on every machine. It is built in from golden_table.txt,
// which tools/golden_table.py alone writes.

#include <cstdint>
#include <optional>
#include <string_view>

namespace golden {

// Counts the changes of sequences that users have: one for each release that changed any.
int sequenceVersion();

// Rows in the table.
std::size_t rowCount();

// Nothing for a row that the table does not have.
std::optional<std::uint64_t> goldenHash(std::string_view generator, std::string_view name);

}  // namespace golden
