#include "python/objects.h"

#include <string>

#include "python/errors.h"
#include "python/method.h"

namespace py = pybind11;

namespace tvpython {
namespace {

PyObject* newObject(PyTypeObject* type, PyObject* /*arguments*/, PyObject* /*names*/) noexcept {
  return guarded([&] {
    std::size_t const bases = py::detail::all_type_info(type).size();
    if (bases != 1)
      refuse(Kind::type, "InvalidBases",
             std::string("objects are made of one class of tvmathrng, and ") + type->tp_name +
                 " has " + std::to_string(bases));
    return py::reinterpret_steal<py::object>(py::detail::make_new_instance(type));
  });
}

}  // namespace

void guardObjects() {
  // No other module's: PYBIND11_COMPILER_TYPE keeps this one's classes to itself.
  PyObject* const base = py::detail::get_internals().instance_base;
  reinterpret_cast<PyTypeObject*>(base)->tp_new = newObject;
}

void detail::checkClass(PyObject* object, PyTypeObject* type, char const* key) {
  if (!PyObject_TypeCheck(object, type))
    refuse(Kind::type, key,
           std::string("a ") + type->tp_name + " is needed, not an object of type " +
               Py_TYPE(object)->tp_name);
}

void detail::refuseUnmade(PyObject* object) {
  refuse(
      Kind::type, "NotInitialised",
      std::string("this ") + Py_TYPE(object)->tp_name + " was made without calling its __init__");
}

void detail::refuseSecond(PyObject* object) {
  refuse(Kind::type, "AlreadyInitialised",
         std::string("this ") + Py_TYPE(object)->tp_name +
             " has been made; make another one, or change it by its methods");
}

}  // namespace tvpython
