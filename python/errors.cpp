#include "python/errors.h"

#include <pybind11/pybind11.h>

#include <new>
#include <utility>

#include "host/messages.h"

namespace py = pybind11;

namespace tvpython {
namespace {

using foundation::core::except::AnyException;
using foundation::core::except::Exception;
using foundation::core::except::MessageId;

char const* className(Kind kind) noexcept {
  switch (kind) {
    case Kind::value:
      return "TvValueError";
    case Kind::type:
      return "TvTypeError";
    case Kind::memory:
      return "TvMemoryError";
    case Kind::thread:
      return "TvThreadError";
  }
  return "TvError";
}

constexpr char const* kNoMemory = "TALVOR:nomem";

Kind kindOf(std::string const& libraryIdentifier) noexcept {
  return libraryIdentifier == kNoMemory ? Kind::memory : Kind::value;
}

void setTvError(Kind kind, std::string const& identifier, char const* text) {
  py::object const type = py::module_::import("tvmathrng.errors").attr(className(kind));
  // Without its __init__, which is no C: the interpreter may end meanwhile, and C++ cannot unwind
  // for that while it handles an exception.
  auto* const made = reinterpret_cast<PyTypeObject*>(type.ptr());
  auto const error =
      py::reinterpret_steal<py::object>(made->tp_new(made, py::make_tuple(text).ptr(), nullptr));
  if (!error) throw py::error_already_set();
  error.attr("identifier") = identifier;
  PyErr_SetObject(type.ptr(), error.ptr());
}

// False for an exception that is none of ours.
bool setIfOurs() {
  try {
    throw;
  } catch (Refusal const& refusal) {
    setTvError(refusal.kind(), refusal.identifier(), refusal.what());
  } catch (AnyException const& error) {
    setTvError(kindOf(error.GetID()), error.GetID(), error.text());
  } catch (std::bad_alloc const&) {
    setTvError(Kind::memory, kNoMemory, "There is not enough memory.");
  } catch (...) {
    return false;
  }
  return true;
}

}  // namespace

void refuse(Kind kind, std::string const& key, std::string text) {
  throw Refusal(kind, "TALVOR:python:" + key, std::move(text));
}

void refuseAsLibrary(std::string const& path, std::string const& key,
                     std::vector<foundation::core::except::Argument> arguments) {
  MessageId const id(path, key, std::move(arguments));
  throw Exception<MessageId>(id, renderMessage(id));
}

void setPythonError() noexcept {
  try {
    if (setIfOurs()) return;
    throw;
  } catch (py::error_already_set& error) {
    error.restore();
  } catch (std::exception const& error) {
    PyErr_SetString(PyExc_RuntimeError, error.what());
  } catch (...) {
    PyErr_SetString(PyExc_RuntimeError, "an unknown C++ exception");
  }
}

void registerErrors() {
  py::register_local_exception_translator([](std::exception_ptr thrown) {
    try {
      std::rethrow_exception(std::move(thrown));
    } catch (...) {
      if (!setIfOurs()) throw;
    }
  });
}

}  // namespace tvpython
