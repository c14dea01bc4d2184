#pragma once

// The one exception of this interface.

#include <tvmathrng/cxx20.h>

#include <exception>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "host/except.h"

namespace tvmathrng {

/// A call that was refused or failed. A call refused for its arguments draws nothing and changes
/// nothing. Memory that a returned vector cannot have is std::bad_alloc or std::length_error.
class Error final : public std::exception {
 public:
  using Argument = std::variant<std::string, double>;

  explicit Error(foundation::core::except::AnyException const& cause)
      : Error(cause.GetID(), cause.GetBaseMsgIDObj().arguments(), cause.text()) {}
  Error(std::string identifier, std::vector<Argument> arguments, std::string text)
      : identifier_(std::move(identifier)),
        arguments_(std::move(arguments)),
        text_(std::move(text)) {}

  /// For programs, for example "TALVOR:RandStream:create:UnknownRNGType".
  std::string const& identifier() const noexcept { return identifier_; }
  /// The values of the call that the text names.
  std::vector<Argument> const& arguments() const noexcept { return arguments_; }
  /// For people; complete sentences.
  char const* what() const noexcept override { return text_.c_str(); }

 private:
  std::string identifier_;
  std::vector<Argument> arguments_;
  std::string text_;
};

namespace detail {

// operation(), with what the library throws turned into Error.
template <class Operation>
decltype(auto) withErrors(Operation&& operation) {
  try {
    return operation();
  } catch (foundation::core::except::AnyException const& cause) {
    throw Error(cause);
  }
}

}  // namespace detail

}  // namespace tvmathrng
