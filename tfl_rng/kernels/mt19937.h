#pragma once

// Vector kernels of MT19937: regeneration, tempering and conversion to doubles in one pass.

#include <cstddef>
#include <cstdint>

#include "tfl_rng/kernels/form.h"

namespace tfl_rng::mt19937 {

inline constexpr std::size_t kWords = 624;
inline constexpr std::size_t kShift = 397;
inline constexpr std::uint32_t kUpperMask = 0x80000000;
inline constexpr std::uint32_t kMatrix = 0x9908b0df;
inline constexpr std::uint32_t kTemperB = 0x9d2c5680;
inline constexpr std::uint32_t kTemperC = 0xefc60000;

// The kernels read whole vectors past the end, and use the room there while they regenerate.
inline constexpr std::size_t kRoom = 16;
struct Batch {
  alignas(64) std::uint32_t words[kWords + kRoom];
};

// Converts the tempered words from words[position] on into out[0, n), which they must suffice for:
// res53 of two, or open32 of one (to_double.h).
void fill(Full, Batch const& batch, std::size_t position, double* out, std::size_t n);
void fill(Reduced, Batch const& batch, std::size_t position, double* out, std::size_t n);

// Regenerates the batch and fills out[0, n) from its front.
void regenerateAndFill(Full, Batch& batch, double* out, std::size_t n);
void regenerateAndFill(Reduced, Batch& batch, double* out, std::size_t n);

// Tempers the words from words[position] on into values[0, n), two each, the first one low.
void temper(Batch const& batch, std::size_t position, std::uint64_t* values, std::size_t n);

}  // namespace tfl_rng::mt19937
