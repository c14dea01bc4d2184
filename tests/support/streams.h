#pragma once

// Native streams behind handles and objects, without the class RandStream.

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

// An object of a class that does nothing but keep its handle.
inline txArrayPtr objectOf(Handle const& handle) {
  auto definition = std::make_shared<embedded_host::ClassDefinition>();
  definition->properties = {{.name = "StreamID"}};
  txArrayPtr object = embedded_host::makeObject(definition);
  embedded_host::setStoredProperty(*object, "StreamID", handle.share());
  return object;
}

inline std::string textOf(txArray const& value) { return utToAscii(*value.scalarText()); }

}  // namespace testing_support
