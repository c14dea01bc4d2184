#pragma once

// How users come by a stream: what the class, the interfaces for C++, C and Python and the commands
// have in common above the factory.

#include <cstdint>
#include <memory>
#include <string_view>

#include "host/export.h"
#include "rng/randstream.h"

namespace rng {

// Stream `index`, from 0, of the `count` streams of a seed. The generator may be called by its
// name, its other spelling or its short name, in any case; the stream has the name. Errors:
// create:UnknownRNGType, with the name that was probably meant, create:BadNumStreams for a count of
// 0, create:BadStreamIndex for an index that is not below it, and those of the generator's factory.
TV_EXPORT std::unique_ptr<randstream> createStream(std::string_view generator, std::uint32_t seed,
                                                   std::uint64_t index = 0,
                                                   std::uint64_t count = 1);

}  // namespace rng
