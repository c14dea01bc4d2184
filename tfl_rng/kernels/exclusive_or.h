#pragma once

// Vector kernel of sums over the field of two elements.

#include <cstddef>

namespace tfl_rng {

// out ^= in, `bytes` of both. They do not overlap.
void exclusiveOr(void* out, void const* in, std::size_t bytes) noexcept;

}  // namespace tfl_rng
