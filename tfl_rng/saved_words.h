#pragma once

// What several cores ask about a saved state.

#include <algorithm>
#include <cstddef>

namespace tfl_rng {

template <class Word>
constexpr bool allZero(Word const* words, std::size_t n) noexcept {
  return std::all_of(words, words + n, [](Word word) { return word == 0; });
}

}  // namespace tfl_rng
