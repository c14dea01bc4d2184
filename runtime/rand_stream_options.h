#pragma once

// The arguments of the constructor RandStream(type, name, value, ...).

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/tx_array.h"

namespace runtime {

struct RandStreamOptions {
  std::string type;  // canonical generator name
  std::uint64_t numStreams = 1;
  std::vector<std::uint64_t> streamIndices = {1};
  std::uint32_t seed = 0;
  bool cellOutput = false;
  // Native properties to be set, in the order given.
  struct Setting {
    char const* property;
    txArray const* value;
    int position;  // of the value among the arguments
  };
  std::vector<Setting> settings = {};
};

// Names in any case; options in any order, the last of a name counts. Without a type it is the
// generator that the host was shipped with. Errors: those of RandStream::create for values that
// make no sense, create:InvalidOption, create:UnknownOption,
// create:MissingValue.
RandStreamOptions parseRandStreamOptions(std::span<txArray const* const> args);

}  // namespace runtime
