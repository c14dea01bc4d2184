#pragma once

// Errors on their way to Python: each becomes a tvmathrng.TvError with its identifier, and at the
// same time the kind of exception that Python programs expect.

#include <exception>
#include <initializer_list>
#include <string>

#include "host/except.h"

namespace tvpython {

enum class Kind { value, type, memory, thread };

// A call that the binding itself refuses.
class Refusal final : public std::exception {
 public:
  Refusal(Kind kind, std::string identifier, std::string text)
      : kind_(kind), identifier_(std::move(identifier)), text_(std::move(text)) {}

  Kind kind() const noexcept { return kind_; }
  std::string const& identifier() const noexcept { return identifier_; }
  char const* what() const noexcept override { return text_.c_str(); }

 private:
  Kind kind_;
  std::string identifier_;
  std::string text_;
};

// Raises "TALVOR:python:<key>".
[[noreturn]] void refuse(Kind kind, std::string const& key, std::string text);

// Raises an identifier of the library, "<path>:<key>", with the library's text.
[[noreturn]] void refuseAsLibrary(std::string const& path, std::string const& key,
                                  std::vector<foundation::core::except::Argument> arguments = {});

// Sets the Python exception for the C++ exception in flight. Called from a handler, with the
// interpreter's lock.
void setPythonError() noexcept;

// Lets pybind11 do the same for the functions that it wraps.
void registerErrors();

}  // namespace tvpython
