#pragma once

// What sizes an array may have.

#include <cstddef>
#include <cstdint>

#include "embedded_host/array.h"

namespace embedded_host {

// The number of elements of these dimensions. More of them than the machine's memory holds, at
// `bytesEach` bytes, is the host error "TALVOR:array:SizeLimitExceeded".
std::uint64_t countElements(Dims dims, std::size_t bytesEach);

}  // namespace embedded_host
