#pragma once

// Objects of this package's classes in every state that Python lets them be in: made without
// __init__, made a second time, of classes derived from none or several of them.

#include <pybind11/pybind11.h>

#include <memory>

namespace tvpython {

// The class whose objects hold a T, from when it is added.
template <class T>
inline PyTypeObject* classOf = nullptr;

// From here on objects of this module's classes hold one thing each; the others, for which pybind11
// ends the process or takes one thing for another, are refused. Called before a class is added.
void guardObjects();

namespace detail {

void checkClass(PyObject* object, PyTypeObject* type, char const* key);
[[noreturn]] void refuseUnmade(PyObject* object);
[[noreturn]] void refuseSecond(PyObject* object);

// Where pybind11 keeps what an object holds that holds one thing; null before its __init__ has run.
inline void*& held(PyObject* object) noexcept {
  return reinterpret_cast<pybind11::detail::instance*>(object)->simple_value_holder[0];
}

}  // namespace detail

// Whether an object of T's class has been made. Errors: "TALVOR:python:<T::kNotOne>" for one of
// another class.
template <class T>
bool isMade(PyObject* object) {
  detail::checkClass(object, classOf<T>, T::kNotOne);
  return detail::held(object);
}

// What an object holds. Errors: the same, and "TALVOR:python:NotInitialised" when it was made
// without calling its __init__.
template <class T>
T& heldBy(PyObject* object) {
  if (!isMade<T>(object)) detail::refuseUnmade(object);
  return *static_cast<T*>(detail::held(object));
}

// What an __init__ does. Errors: the same, and "TALVOR:python:AlreadyInitialised": others may hold
// on to what the object holds.
template <class T>
void put(PyObject* object, std::unique_ptr<T> content) {
  if (isMade<T>(object)) detail::refuseSecond(object);
  detail::held(object) = content.get();
  pybind11::detail::get_type_info(classOf<T>)
      ->init_instance(reinterpret_cast<pybind11::detail::instance*>(object), &content);
}

// Adds a method under a name by which pybind11 knows constructors, whose second call it would pass
// over without a word.
template <class Function, class... Extra>
void addMaker(pybind11::handle type, char const* name, char const* shown, Function const& function,
              Extra const&... extra) {
  pybind11::setattr(
      type, name,
      pybind11::cpp_function(function, pybind11::name(shown), pybind11::is_method(type), extra...));
}

}  // namespace tvpython
