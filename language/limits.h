#pragma once

// What one program may ask for. Text from outside cannot exhaust stack or memory.

#include <cstddef>
#include <cstdint>

namespace language {

inline constexpr std::size_t kMaxSourceBytes = std::size_t{4} << 20;
// Nesting of brackets, operators and blocks, all together. The parser and the evaluator recurse: a
// level takes up to 900 bytes of stack, and a thread of 256 KiB is to hold them.
inline constexpr int kMaxNesting = 200;
// Values inside one cell array, at all depths together, and how deep cells may nest.
inline constexpr std::uint64_t kMaxCellValues = 4'000'000;
inline constexpr int kMaxCellDepth = 200;

}  // namespace language
