#pragma once

// What one program may ask for. Text from outside cannot exhaust stack or memory.

#include <cstddef>
#include <cstdint>

namespace language {

inline constexpr std::size_t kMaxSourceBytes = std::size_t{4} << 20;
// Nesting of brackets, operators and blocks; the evaluator recurses once or twice a level.
inline constexpr int kMaxNesting = 400;
// Values inside one cell array, at all depths together, and how deep cells may nest.
inline constexpr std::uint64_t kMaxCellValues = 4'000'000;
inline constexpr int kMaxCellDepth = 200;

}  // namespace language
