#include "python/arguments.h"

#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "python/errors.h"
#include "python/values.h"

namespace py = pybind11;

namespace tvpython {
namespace {

constexpr double kLargestWhole = 0x1p53;  // the library's limits end here
constexpr ElementRow kElements[] = {
    {Element::float64, 'f', 8, "float64", -kLargestWhole, kLargestWhole},
    {Element::float32, 'f', 4, "float32", -0x1p24, 0x1p24},
    {Element::complex128, 'c', 16, "complex128", 0, 0},
    {Element::complex64, 'c', 8, "complex64", 0, 0},
    {Element::int8, 'i', 1, "int8", -0x1p7, 0x1p7 - 1},
    {Element::int16, 'i', 2, "int16", -0x1p15, 0x1p15 - 1},
    {Element::int32, 'i', 4, "int32", -0x1p31, 0x1p31 - 1},
    {Element::int64, 'i', 8, "int64", -kLargestWhole, kLargestWhole},
    {Element::uint8, 'u', 1, "uint8", 0, 0x1p8 - 1},
    {Element::uint16, 'u', 2, "uint16", 0, 0x1p16 - 1},
    {Element::uint32, 'u', 4, "uint32", 0, 0x1p32 - 1},
    {Element::uint64, 'u', 8, "uint64", 0, kLargestWhole},
    {Element::boolean, 'b', 1, "bool", 0, 1},
};

constexpr char const* kArgumentNames[] = {"dtype", "out", "order"};
struct Keywords {
  py::handle dtype, out, order;  // null where not given, or None
};

bool isSize(PyObject* name) { return PyUnicode_CompareWithASCIIString(name, "size") == 0; }

Keywords readKeywords(Call const& call) {
  Keywords found;
  py::handle* const places[] = {&found.dtype, &found.out, &found.order};
  Py_ssize_t const count = call.names ? PyTuple_GET_SIZE(call.names) : 0;
  for (Py_ssize_t i = 0; i < count; ++i) {
    PyObject* const name = PyTuple_GET_ITEM(call.names, i);
    if (isSize(name)) continue;
    auto const row = std::ranges::find_if(kArgumentNames, [&](char const* known) {
      return PyUnicode_CompareWithASCIIString(name, known) == 0;
    });
    if (row == std::end(kArgumentNames))
      refuse(Kind::type, "UnknownArgument",
             std::string(call.function) + "() has no argument " + quoted(name) +
                 "; by name it takes size, dtype, out and order");
    PyObject* const value = call.arguments[call.positional + i];
    if (value != Py_None) *places[row - std::begin(kArgumentNames)] = value;
  }
  return found;
}

std::string namesOf(std::span<Element const> allowed) {
  std::string names;
  for (Element const element : allowed) {
    if (!names.empty()) names += element == allowed.back() ? " or " : ", ";
    names += rowOf(element).name;
  }
  return names;
}

// The element type of a NumPy dtype, which must be one of `allowed` in the machine's byte order.
Element elementOf(Call const& call, py::dtype const& type, std::span<Element const> allowed) {
  bool const native = type.byteorder() == '=' || type.byteorder() == '|';
  for (Element const element : allowed) {
    ElementRow const& row = rowOf(element);
    if (native && type.kind() == row.kind && type.itemsize() == row.size) return element;
  }
  refuse(Kind::type, "InvalidDtype",
         std::string(call.function) + "() cannot make elements of dtype " +
             std::string(py::str(static_cast<py::handle>(type))) + "; it makes " +
             namesOf(allowed) + ", in the byte order of the machine");
}

Element elementOf(Call const& call, py::handle wanted, std::span<Element const> allowed) {
  std::optional<py::dtype> type;
  try {
    type = py::dtype::from_args(py::reinterpret_borrow<py::object>(wanted));
  } catch (py::error_already_set const& error) {
    if (!error.matches(PyExc_Exception)) throw;
  }
  if (!type)
    refuse(Kind::type, "InvalidDtype",
           quoted(wanted) + " is no dtype; " + call.function + "() makes " + namesOf(allowed));
  return elementOf(call, *type, allowed);
}

Py_ssize_t dimensionOf(py::handle value) {
  py::object const whole = wholeNumber(value);
  if (!whole)
    refuse(
        Kind::type, "InvalidShape",
        "a dimension must be a whole number, not " + quoted(value) + " of type " + typeName(value));
  Py_ssize_t const n = PyNumber_AsSsize_t(whole.ptr(), nullptr);  // clips what is too large
  if (n < 0)
    refuse(Kind::value, "InvalidShape", "a dimension cannot be negative: " + quoted(value));
  return n;
}

std::string shapeText(std::span<Py_ssize_t const> shape) {
  std::string text = "(";
  for (Py_ssize_t const n : shape) text += (text.size() > 1 ? ", " : "") + std::to_string(n);
  return text + (shape.size() == 1 ? ",)" : ")");
}

// 'C' or 'F'; 0 when it was not given.
char readOrder(py::handle order) {
  if (!order) return 0;
  if (PyUnicode_Check(order.ptr())) {
    for (char const* known : {"C", "F"})
      if (PyUnicode_CompareWithASCIIString(order.ptr(), known) == 0) return *known;
  }
  refuse(Kind::value, "InvalidOrder",
         "order must be 'C' (the last index varies fastest) or 'F' (the first does), not " +
             quoted(order));
}

// Refuses what the memory of this machine cannot hold, before it is asked for.
void checkSize(Shape const& shape, int elementSize) {
  static double const memory =
      static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE));
  double bytes = elementSize;
  // An array without elements has strides too.
  for (Py_ssize_t const n : shape) bytes *= static_cast<double>(std::max<Py_ssize_t>(n, 1));
  if (bytes > memory)
    refuse(Kind::memory, "TooLarge",
           "an array of shape " + shapeText(shape) +
               " is larger than the memory of this machine; draw it in parts, with out=");
}

py::array makeArray(Shape const& shape, Element element, char order) {
  ElementRow const& row = rowOf(element);
  checkSize(shape, row.size);
  Shape strides(shape.size());
  Py_ssize_t step = row.size;
  for (std::size_t i = 0; i < shape.size(); ++i) {
    std::size_t const at = order == 'F' ? i : shape.size() - 1 - i;
    strides[at] = step;
    step *= std::max<Py_ssize_t>(shape[at], 1);
  }
  py::dtype const type(std::string(1, row.kind) + std::to_string(row.size));
  try {
    return py::array(type, shape, strides);
  } catch (py::error_already_set const& error) {
    bool const isMemory = error.matches(PyExc_MemoryError);
    if (!isMemory && !error.matches(PyExc_ValueError)) throw;
    std::string text = py::str(error.value());  // NumPy's limits
    if (isMemory) throw Refusal(Kind::memory, "TALVOR:nomem", std::move(text));
    refuse(Kind::value, "InvalidShape", std::move(text));
  }
}

[[noreturn]] void refuseOut(Kind kind, std::string const& text) {
  refuse(kind, "InvalidOut", text);
}

// Checks the caller's array: it must be ready to be filled from its first byte to its last.
Result readOut(Call const& call, Keywords const& given, std::optional<Shape> const& shape,
               char order, std::span<Element const> allowed) {
  if (!py::isinstance<py::array>(given.out))
    refuseOut(Kind::type, "out must be a NumPy array, not " + typeName(given.out));
  auto array = py::reinterpret_borrow<py::array>(given.out);
  Element const element = elementOf(call, array.dtype(), allowed);
  if (given.dtype && elementOf(call, given.dtype, allowed) != element)
    refuseOut(Kind::type, "out has dtype " + std::string(rowOf(element).name) +
                              ", not the one asked for, " + quoted(given.dtype));
  if (!array.writeable()) refuseOut(Kind::value, "out is read-only");
  if (!(array.flags() & py::detail::npy_api::NPY_ARRAY_ALIGNED_))
    refuseOut(Kind::value, "the elements of out are not aligned in memory; pass a copy");
  bool const isC = array.flags() & py::array::c_style;
  bool const isF = array.flags() & py::array::f_style;
  if (!isC && !isF)
    refuseOut(Kind::value,
              "the elements of out do not stand side by side in memory (strides " +
                  shapeText({array.strides(), static_cast<std::size_t>(array.ndim())}) +
                  "); fill a contiguous array and copy it in");
  if ((order == 'C' && !isC) || (order == 'F' && !isF))
    refuseOut(Kind::value, std::string("out does not have the order asked for, '") + order + "'");
  std::span<Py_ssize_t const> const actual(array.shape(), static_cast<std::size_t>(array.ndim()));
  if (shape && !std::ranges::equal(*shape, actual))
    refuseOut(Kind::value, "out has shape " + shapeText(actual) + ", not the one asked for, " +
                               shapeText(*shape));
  return {array, array.mutable_data(), static_cast<std::size_t>(array.size()), element};
}

}  // namespace

ElementRow const& rowOf(Element element) {
  ElementRow const& row = kElements[static_cast<std::size_t>(element)];
  return row;
}

PyObject* Call::size() const {
  for (Py_ssize_t i = 0; i < (names ? PyTuple_GET_SIZE(names) : 0); ++i)
    if (isSize(PyTuple_GET_ITEM(names, i)) && arguments[positional + i] != Py_None)
      return arguments[positional + i];
  return nullptr;
}

std::optional<Shape> readShape(Call const& call, Py_ssize_t leading) {
  std::span<PyObject* const> values(call.arguments + leading,
                                    static_cast<std::size_t>(call.positional - leading));
  PyObject* const size = call.size();
  if (size && !values.empty())
    refuse(Kind::type, "InvalidShape",
           "the shape is given twice: as " + quoted(values[0]) + " and as size=" + quoted(size));
  if (size) values = {&size, 1};
  if (values.empty()) return std::nullopt;
  Shape shape;
  py::handle const first = values[0];
  if (values.size() > 1 || wholeNumber(first)) {
    for (PyObject* const value : values) shape.push_back(dimensionOf(value));
    return shape;
  }
  bool const isText =
      PyUnicode_Check(first.ptr()) || PyBytes_Check(first.ptr()) || PyByteArray_Check(first.ptr());
  if (!py::isinstance<py::sequence>(first) || isText)
    refuse(Kind::type, "InvalidShape",
           "a shape is given as whole numbers or as a tuple of them, not as " + quoted(first));
  // Nobody else may hold a dimension: arrays make them as they are asked for.
  for (py::object const dimension : py::reinterpret_borrow<py::sequence>(first))
    shape.push_back(dimensionOf(dimension));
  return shape;
}

Result readResult(Call const& call, std::optional<Shape> const& shape,
                  std::span<Element const> allowed) {
  Keywords const given = readKeywords(call);
  char const order = readOrder(given.order);
  if (given.out) return readOut(call, given, shape, order, allowed);
  Element const element = given.dtype ? elementOf(call, given.dtype, allowed) : allowed.front();
  py::array array = makeArray(shape.value_or(Shape{}), element, order);
  return {array, array.mutable_data(), static_cast<std::size_t>(array.size()), element, !shape};
}

py::object Result::finish() && {
  if (!isScalar) return std::move(object);
  return object[py::tuple()];
}

}  // namespace tvpython
