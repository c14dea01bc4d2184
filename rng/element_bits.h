#pragma once

// The elements of a state as numbers, whatever the machine's byte order.

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace element_bits {

template <class Word>
std::uint64_t loadWord(void const* from) noexcept {
  Word word;
  std::memcpy(&word, from, sizeof word);
  return word;
}

template <class Word>
void storeWord(void* to, std::uint64_t bits) noexcept {
  Word const word = static_cast<Word>(bits);
  std::memcpy(to, &word, sizeof word);
}

// The bits of an element of 1, 2, 4 or 8 bytes.
inline std::uint64_t load(void const* from, std::size_t bytes) noexcept {
  switch (bytes) {
    case 1:
      return loadWord<std::uint8_t>(from);
    case 2:
      return loadWord<std::uint16_t>(from);
    case 4:
      return loadWord<std::uint32_t>(from);
    default:
      return loadWord<std::uint64_t>(from);
  }
}

inline void store(void* to, std::size_t bytes, std::uint64_t bits) noexcept {
  switch (bytes) {
    case 1:
      return storeWord<std::uint8_t>(to, bits);
    case 2:
      return storeWord<std::uint16_t>(to, bits);
    case 4:
      return storeWord<std::uint32_t>(to, bits);
    default:
      return storeWord<std::uint64_t>(to, bits);
  }
}

}  // namespace element_bits
