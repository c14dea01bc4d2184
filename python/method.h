#pragma once

// Methods that the interpreter calls straight away, beside those that pybind11 wraps: a call costs
// a few tens of nanoseconds instead of some hundred.

#include <pybind11/pybind11.h>

#include "python/errors.h"
#include "python/interpreter.h"

namespace tvpython {

// body(), its result handed over to the interpreter; a C++ exception becomes a Python one.
template <class Body>
PyObject* guarded(Body const& body) noexcept {
  try {
    return withInterpreter([&] { return pybind11::object(body()).release().ptr(); });
  } catch (...) {
    setPythonError();
    return nullptr;
  }
}

// The interpreter's table of methods has one function type for all ways of passing arguments.
template <class Function>
PyCFunction asCFunction(Function* function) noexcept {
  return reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(function));
}

inline PyMethodDef fastMethod(char const* name, _PyCFunctionFastWithKeywords function,
                              char const* doc) noexcept {
  return {name, asCFunction(function), METH_FASTCALL | METH_KEYWORDS, doc};
}

// Definitions must live as long as the interpreter.

inline void addMethod(pybind11::handle type, PyMethodDef& definition) {
  auto const method = pybind11::reinterpret_steal<pybind11::object>(
      PyDescr_NewMethod(reinterpret_cast<PyTypeObject*>(type.ptr()), &definition));
  if (!method) throw pybind11::error_already_set();
  pybind11::setattr(type, definition.ml_name, method);
}

inline void addFunction(pybind11::module_& module, PyMethodDef& definition) {
  pybind11::object const name = module.attr("__name__");
  auto const function = pybind11::reinterpret_steal<pybind11::object>(
      PyCFunction_NewEx(&definition, module.ptr(), name.ptr()));
  if (!function) throw pybind11::error_already_set();
  pybind11::setattr(module, definition.ml_name, function);
}

}  // namespace tvpython
