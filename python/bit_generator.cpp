#include "python/bit_generator.h"

#include <numpy/random/bitgen.h>
#include <pybind11/numpy.h>

#include <cstdint>
#include <memory>
#include <utility>

#include "python/docs.h"
#include "python/method.h"

namespace py = pybind11;

namespace tvpython {
namespace {

// What NumPy calls, with the lock held and without the interpreter. None keeps anything between
// calls: where the stream stands is all there is.

double nextDouble(void* stream) noexcept {
  double value;
  static_cast<randstream*>(stream)->randuFcn(&value, 1);
  return value;
}

// The 32 leading bits of one uniform.
std::uint32_t nextUint32(void* stream) noexcept {
  return static_cast<std::uint32_t>(nextDouble(stream) * 0x1p32);
}

// Two uniforms, the first one's bits on top.
std::uint64_t nextUint64(void* stream) noexcept {
  std::uint64_t const high = nextUint32(stream);
  return high << 32 | nextUint32(stream);
}

// The table of functions, and an owner of the stream that they draw from. NumPy keeps the capsule's
// pointer as long as the capsule's owner.
struct Capsule {
  py::object stream;
  bitgen_t functions;

  static constexpr char const* kName = "BitGenerator";

  static py::object make(py::object const& stream) {
    auto content = std::make_unique<Capsule>(Capsule{
        stream, {&streamOf(stream.ptr()).get(), nextUint64, nextUint32, nextDouble, nextUint64}});
    auto capsule =
        py::reinterpret_steal<py::object>(PyCapsule_New(&content->functions, kName, destroy));
    if (!capsule || PyCapsule_SetContext(capsule.ptr(), content.get()) != 0)
      throw py::error_already_set();
    (void)content.release();
    return capsule;
  }

 private:
  static void destroy(PyObject* capsule) {
    delete static_cast<Capsule*>(PyCapsule_GetContext(capsule));
  }
};

// What NumPy locks around its draws: the right to use the stream, so that a draw from the stream
// itself in another thread is noticed as everywhere else.
struct Lock {
  static constexpr char const* kNotOne = "NotALock";
  py::object stream;
  bool held = false;
};

PyObject* enterLock(PyObject* self, PyObject* /*none*/) noexcept {
  return guarded([&] {
    Lock& lock = heldBy<Lock>(self);
    streamOf(lock.stream.ptr()).acquire();
    lock.held = true;
    return py::none();
  });
}

PyObject* exitLock(PyObject* self, PyObject* const* /*exception*/, Py_ssize_t /*three*/,
                   PyObject* /*none*/) noexcept {
  return guarded([&] {
    Lock& lock = heldBy<Lock>(self);
    if (!std::exchange(lock.held, false))
      refuse(Kind::thread, "NotLocked", "this lock is left without having been entered");
    streamOf(lock.stream.ptr()).release();
    return py::none();
  });
}

struct BitGenerator {
  static constexpr char const* kNotOne = "NotABitGenerator";
  explicit BitGenerator(py::object source)
      : stream(std::move(source)), capsule(Capsule::make(stream)), lock(py::cast(Lock{stream})) {}

  py::object stream;
  py::object capsule;
  py::object lock;
};

py::object randomRaw(py::handle self, py::object const& size) {
  Stream& stream = streamOf(heldBy<BitGenerator>(self.ptr()).stream.ptr());
  if (size.is_none()) {
    Stream::Use const use(stream);
    return py::int_(nextUint64(&*use));
  }
  py::object array = py::module_::import("numpy").attr("empty")(size, "uint64");
  auto values = py::reinterpret_borrow<py::array_t<std::uint64_t>>(array);
  std::uint64_t* const out = values.mutable_data();
  auto const n = static_cast<std::size_t>(values.size());
  draw(stream, n, [&](randstream& source) {
    for (std::size_t i = 0; i < n; ++i) out[i] = nextUint64(&source);
  });
  return array;
}

}  // namespace

void addBitGenerator(py::module_& module, py::class_<Stream>& streams) {
  static PyMethodDef enter = {"__enter__", enterLock, METH_NOARGS, nullptr};
  static PyMethodDef exit = fastMethod("__exit__", exitLock, nullptr);
  py::class_<Lock> lock(module, "StreamLock", docs::kLock);
  classOf<Lock> = reinterpret_cast<PyTypeObject*>(lock.ptr());
  addMethod(lock, enter);
  addMethod(lock, exit);

  py::class_<BitGenerator> type(module, "BitGenerator", docs::kBitGenerator);
  classOf<BitGenerator> = reinterpret_cast<PyTypeObject*>(type.ptr());
  addMaker(
      type, "__init__", "BitGenerator",
      [](py::handle self, py::object const& stream) {
        put(self.ptr(), std::make_unique<BitGenerator>(stream));
      },
      py::arg("stream"));
  auto const part = [&](char const* name, py::object BitGenerator::*member, char const* doc) {
    type.def_property_readonly(
        name, [member](py::handle self) { return heldBy<BitGenerator>(self.ptr()).*member; }, doc);
  };
  part("stream", &BitGenerator::stream, docs::kBitGeneratorStream);
  part("capsule", &BitGenerator::capsule, docs::kCapsule);
  part("lock", &BitGenerator::lock, docs::kBitGeneratorLock);
  type.def_property(
          "state", [](py::handle self) { return self.attr("stream").attr("snapshot")(); },
          [](py::handle self, py::object const& state) {
            self.attr("stream").attr("restore")(state);
          },
          docs::kBitGeneratorState)
      .def("random_raw", randomRaw, py::arg("size") = py::none(), docs::kRandomRaw)
      // Three parts, as Generator takes its bit generator apart. The stream brings its own.
      .def("__reduce__", [](py::object const& self) {
        return py::make_tuple(self.attr("__class__"), py::make_tuple(self.attr("stream")),
                              py::none());
      });
  streams.def(
      "bit_generator", [](py::object const& self) { return BitGenerator(self); },
      docs::kBitGeneratorMethod);
}

}  // namespace tvpython
