// Streams as text: snapshots, and what copying, pickling and comparing make of them.

#include <string>
#include <utility>

#include "python/docs.h"
#include "python/errors.h"
#include "python/method.h"
#include "python/stream.h"
#include "python/values.h"
#include "rng/snapshot.h"

namespace py = pybind11;

namespace tvpython {
namespace {

py::str snapshot(py::handle self) { return takeSnapshot(*Stream::Use(streamOf(self.ptr()))); }

void restore(py::handle self, py::handle text) {
  std::string const given = readText(text, "a snapshot");
  restoreSnapshot(*Stream::Use(streamOf(self.ptr())), given);
}

std::unique_ptr<Stream> fromSnapshot(py::object const& text) {
  return std::make_unique<Stream>(
      std::unique_ptr<randstream>(createFromSnapshot(readText(text, "a snapshot"))));
}

// Copying and pickling. A state is a snapshot, and with it, for objects of derived classes, what
// they have of their own.
py::object getState(py::handle self) {
  py::object text = snapshot(self);
  py::object const own = py::getattr(self, "__dict__", py::dict());
  if (!PyObject_IsTrue(own.ptr())) return text;
  return py::make_tuple(std::move(text), own);
}

void setState(py::handle self, py::object const& state) {
  py::object text = state;
  py::object own = py::none();
  if (PyTuple_CheckExact(state.ptr()) && PyTuple_GET_SIZE(state.ptr()) == 2) {
    text = py::reinterpret_borrow<py::object>(PyTuple_GET_ITEM(state.ptr(), 0));
    own = py::reinterpret_borrow<py::object>(PyTuple_GET_ITEM(state.ptr(), 1));
    if (!PyDict_Check(own.ptr()) || !py::hasattr(self, "__dict__"))
      refuse(Kind::type, "InvalidState",
             "the state brings attributes that this object cannot take: " + quoted(own));
  }
  if (isMade<Stream>(self.ptr()))
    restore(self, text);
  else
    put(self.ptr(), fromSnapshot(text));
  if (!own.is_none()) self.attr("__dict__").attr("update")(own);
}

// For every protocol.
py::object reduce(py::handle self) {
  return py::make_tuple(py::module_::import("copyreg").attr("__newobj__"),
                        py::make_tuple(self.attr("__class__")), self.attr("__getstate__")());
}

py::object isEqual(py::handle self, py::object const& other) {
  if (!PyObject_TypeCheck(other.ptr(), classOf<Stream>))
    return py::reinterpret_borrow<py::object>(Py_NotImplemented);
  return py::bool_(self.is(other) || snapshot(self).equal(snapshot(other)));
}

// Not while another thread draws: the generator is at work.
std::string substreamText(py::handle self) {
  try {
    std::uint64_t const substream = Stream::Use(streamOf(self.ptr()))->getSubstream();
    return substream > 0 ? ", substream=" + std::to_string(substream) : "";
  } catch (Refusal const&) {
    return "";
  }
}

py::str representation(py::handle self) {
  randstream const& stream = streamOf(self.ptr()).constants();
  std::string text = std::string("RandStream('") + stream.generatorType() +
                     "', seed=" + std::to_string(stream.seed());
  if (stream.numStreams() > 1)
    text += ", stream_index=" + std::to_string(stream.streamIndex()) +
            ", num_streams=" + std::to_string(stream.numStreams());
  return text + substreamText(self) + ")";
}

}  // namespace

void addStreamText(py::class_<Stream>& type) {
  addMaker(type, "__setstate__", "set_state", setState, py::arg("state"));
  type.def("__getstate__", getState)
      .def("__reduce__", reduce)
      .def("snapshot", snapshot, docs::kSnapshot)
      .def("restore", restore, py::arg("snapshot"), docs::kRestore)
      .def_static("from_snapshot", fromSnapshot, py::arg("snapshot"), docs::kFromSnapshot)
      .def("__eq__", isEqual)
      .def("__repr__", representation);
  type.attr("__hash__") = py::none();
}

}  // namespace tvpython
