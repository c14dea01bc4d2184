#pragma once

// The saved form of minimal standard words, shared by the plug-ins that hold some.

#include <cstdint>

namespace plugin_rng {

// The saved form of a minimal standard word: bits 0 to 14 and 16 to 30 change places. Below 2^31
// twice is the word again; bit 31 carries into bit 15.
constexpr std::uint32_t exchangeHalves(std::uint32_t word) noexcept {
  return (word >> 16) + (word & 0x8000) + ((word & 0x7fff) << 16);
}

}  // namespace plugin_rng
