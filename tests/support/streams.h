#pragma once

// Native streams behind handles and objects, made without the class RandStream.

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "builtins/stream_methods.h"
#include "embedded_host/object_system.h"
#include "host/strings.h"
#include "tests/support/calls.h"
#include "tests/support/identifiers.h"

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

// An object with a stream of a generator with seed 7, and what can be done to it.
class Object {
 public:
  explicit Object(char const* type, double numStreams = 1)
      : Object(createStream(type, 7, numStreams), type, numStreams) {}
  Object(Handle handle, char const* type, double numStreams)
      : handle_(std::move(handle)), object_(objectOf(handle_, properties(type, numStreams))) {}

  txArrayPtr share() const { return txShare(*object_); }
  randstream& stream() const { return *mrGetCPPRandStreamFromTxArray(object_.get()); }
  std::size_t state() const { return stateOf(stream()); }

  txArrayPtr get(char const* name) const { return call(RandStream::getset, args(name, share())); }
  void set(char const* name, txArrayPtr value) const {
    call(RandStream::getset, args(name, share(), std::move(value)), 0);
  }
  // The identifier of the error of setting, and that nothing has changed.
  std::string refusal(char const* name, txArrayPtr value) const {
    auto const settings = [&] {
      return std::to_string(state()) + stream().getRandnAlg() +
             std::to_string(stream().antithetic()) + std::to_string(stream().fullPrecision()) +
             std::to_string(stream().getSubstream());
    };
    std::string const before = settings();
    std::string const error = identifierOf([&] { set(name, std::move(value)); });
    EXPECT_EQ(settings(), before);
    return error;
  }
  std::vector<double> draw(double n) const {
    return numbers(*call(RandStream::randstreamRand, args(share(), 1, n)));
  }

 private:
  static std::vector<std::pair<std::string, txArrayPtr>> properties(char const* type,
                                                                    double numStreams) {
    std::vector<std::pair<std::string, txArrayPtr>> result;
    result.emplace_back("Seed", typed<std::uint32_t>(7));
    result.emplace_back("Type", toArgument(type));
    result.emplace_back("NumStreams", typed<std::uint64_t>(numStreams));
    return result;
  }

  Handle handle_;
  txArrayPtr object_;
};

}  // namespace testing_support
