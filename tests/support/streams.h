#pragma once

// Native streams behind handles and objects, made without the class RandStream.

#include <memory>
#include <string>
#include <utility>

#include "builtins/stream_methods.h"
#include "embedded_host/object_system.h"
#include "host/strings.h"
#include "tests/support/calls.h"

namespace testing_support {

// A handle that is released at the end of its scope.
class Handle {
 public:
  explicit Handle(txArrayPtr value) : value_(std::move(value)) {}
  Handle(Handle&&) = default;
  ~Handle() {
    if (value_) call(RandStream::deletefcn, args(std::move(value_)), 0);
  }
  txArrayPtr share() const { return txShare(*value_); }

 private:
  txArrayPtr value_;
};

inline Handle createStream(char const* type, double seed, double numStreams = 1, double index = 1) {
  return Handle(call(RandStream::create,
                     args(type, typed<std::uint64_t>(numStreams), typed<std::uint64_t>(index),
                          typed<std::uint32_t>(seed), emptyMatrix())));
}

// An object of a class that does nothing but keep its properties: the handle, and what else is
// given.
inline txArrayPtr objectOf(Handle const& handle,
                           std::vector<std::pair<std::string, txArrayPtr>> others = {}) {
  auto definition = std::make_shared<embedded_host::ClassDefinition>();
  definition->properties = {{.name = "StreamID"}};
  for (auto const& other : others) definition->properties.push_back({.name = other.first});
  txArrayPtr object = embedded_host::makeObject(definition);
  embedded_host::setStoredProperty(*object, "StreamID", handle.share());
  for (auto& [name, value] : others)
    embedded_host::setStoredProperty(*object, name, std::move(value));
  return object;
}

inline std::string textOf(txArray const& value) { return utToAscii(*value.scalarText()); }

}  // namespace testing_support
