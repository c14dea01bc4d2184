#pragma once

// The arguments of sampling calls: shape, dtype, out and order. All is checked, and the result
// allocated, before anything is drawn.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace tvpython {

// An element type of results.
enum class Element {
  float64,
  float32,
  complex128,
  complex64,
  int8,
  int16,
  int32,
  int64,
  uint8,
  uint16,
  uint32,
  uint64,
  boolean,
};

struct ElementRow {
  Element element;
  char kind;  // NumPy's letter
  int size;   // in bytes
  char const* name;
  double lowest;  // whole numbers from lowest to highest are elements
  double highest;
};
ElementRow const& rowOf(Element element);

// The arguments of a call as the interpreter passes them.
struct Call {
  char const* function;
  PyObject* const* arguments;
  Py_ssize_t positional;
  PyObject* names;  // of the keyword arguments behind the positional ones; null for none

  bool isPlain(Py_ssize_t count) const { return positional == count && !names; }
  // The argument `size`, null when it was not given, or None.
  PyObject* size() const;
};

// What a sampling call fills.
struct Result {
  pybind11::object object;  // to return: an array, or a scalar once it is drawn
  void* data = nullptr;
  std::size_t count = 0;
  Element element{};
  bool isScalar = false;  // neither shape nor out were given

  template <class T>
  T* as() const noexcept {
    return static_cast<T*>(data);
  }
  // The array, or the scalar that was drawn.
  pybind11::object finish() &&;
};

using Shape = std::vector<Py_ssize_t>;

// The shape in the positional arguments behind the first `leading` ones: dimensions one by one, or
// all of them in one sequence; or in `size`, a dimension or a sequence. Nothing when there are
// none. Errors: TALVOR:python:InvalidShape.
std::optional<Shape> readShape(Call const& call, Py_ssize_t leading);

// Reads dtype, out and order, passing over size; the first of `allowed` is the default dtype. The
// result has `shape`; without one it is `out`, or a scalar. Errors: TALVOR:python:UnknownArgument,
// InvalidDtype, InvalidOrder, InvalidOut, TooLarge.
Result readResult(Call const& call, std::optional<Shape> const& shape,
                  std::span<Element const> allowed);

}  // namespace tvpython
