#include "python/values.h"

#include <cstring>
#include <limits>
#include <random>

#include "python/errors.h"

namespace py = pybind11;

namespace tvpython {

std::string typeName(py::handle value) { return Py_TYPE(value.ptr())->tp_name; }

std::string quoted(py::handle value) {
  auto text = py::reinterpret_steal<py::object>(PyObject_Repr(value.ptr()));
  if (text)
    text = py::reinterpret_steal<py::object>(
        PyUnicode_AsEncodedString(text.ptr(), "utf-8", "backslashreplace"));
  if (!text) {
    // Numbers of thousands of digits, and what is not shown for reasons of its own.
    if (!PyErr_ExceptionMatches(PyExc_Exception)) throw py::error_already_set();
    PyErr_Clear();
    return "a value of type " + typeName(value);
  }
  std::string shown = text.cast<std::string>();
  constexpr std::size_t kMost = 100;
  if (shown.size() <= kMost) return shown;
  std::size_t end = kMost;
  while ((shown[end] & 0xC0) == 0x80) --end;  // characters stay whole
  return shown.substr(0, end) + "...";
}

py::object wholeNumber(py::handle value) {
  if (!PyIndex_Check(value.ptr())) return {};
  auto whole = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
  if (whole) return whole;
  // NumPy's arrays pass for whole numbers until they are asked.
  if (!PyErr_ExceptionMatches(PyExc_TypeError)) throw py::error_already_set();
  PyErr_Clear();
  return {};
}

std::uint64_t readCount(py::handle value, char const* what) {
  if (py::object const whole = wholeNumber(value)) {
    std::uint64_t const count = PyLong_AsUnsignedLongLong(whole.ptr());
    if (!PyErr_Occurred()) return count;
    PyErr_Clear();  // negative or beyond 2^64
    refuse(Kind::value, "InvalidNumber",
           std::string(what) + " must be from 0 to 2^64 - 1, not " + quoted(value));
  }
  refuse(Kind::type, "InvalidNumber",
         std::string(what) + " must be a whole number, not " + quoted(value));
}

namespace {

double readLimit(py::handle value) {
  double const limit = PyFloat_AsDouble(value.ptr());
  if (limit != -1 || !PyErr_Occurred()) return limit;
  bool const tooLarge = PyErr_ExceptionMatches(PyExc_OverflowError);
  if (!tooLarge && !PyErr_ExceptionMatches(PyExc_TypeError)) throw py::error_already_set();
  PyErr_Clear();
  if (tooLarge) return std::numeric_limits<double>::infinity();
  refuse(Kind::type, "InvalidLimits",
         "the limits must be a whole number n, for 1 to n, or a pair (lowest, highest), not " +
             quoted(value));
}

}  // namespace

Limits readLimits(py::handle value) {
  if (!PyTuple_Check(value.ptr()) && !PyList_Check(value.ptr())) return {1, readLimit(value)};
  auto const pair = py::reinterpret_borrow<py::sequence>(value);
  if (pair.size() != 2)
    refuse(Kind::value, "InvalidLimits",
           "a pair of limits is (lowest, highest), not " + quoted(value));
  return {readLimit(pair[0]), readLimit(pair[1])};
}

std::uint32_t chosenSeed() { return std::random_device()(); }

std::uint32_t readSeed(py::handle value, char const* path) {
  if (PyUnicode_Check(value.ptr()) && PyUnicode_CompareWithASCIIString(value.ptr(), "entropy") == 0)
    return chosenSeed();
  if (py::object const seed = wholeNumber(value)) {
    std::uint64_t const number = PyLong_AsUnsignedLongLong(seed.ptr());
    bool const fits = !PyErr_Occurred() && number <= 0xFFFFFFFF;
    PyErr_Clear();
    if (fits) return static_cast<std::uint32_t>(number);
  }
  refuseAsLibrary(path, "BadSeed");
}

bool readFlag(py::handle value, char const* what) {
  py::detail::make_caster<bool> flag;  // takes NumPy's too
  if (!flag.load(value, false))
    refuse(Kind::type, "InvalidFlag",
           std::string(what) + " must be True or False, not " + quoted(value));
  return py::detail::cast_op<bool>(flag);
}

std::string readText(py::handle value, char const* what) {
  if (!PyUnicode_Check(value.ptr()))
    refuse(Kind::type, "InvalidText",
           std::string(what) + " must be a string, not " + quoted(value));
  Py_ssize_t size;
  char const* const text = PyUnicode_AsUTF8AndSize(value.ptr(), &size);
  if (!text) PyErr_Clear();
  // A null character would end the text for the library, and let it take the first part for all.
  if (!text || std::memchr(text, 0, static_cast<std::size_t>(size)))
    refuse(Kind::value, "InvalidText",
           std::string(what) +
               " must be a string without null characters and lone surrogates, not " +
               quoted(value));
  return {text, static_cast<std::size_t>(size)};
}

}  // namespace tvpython
