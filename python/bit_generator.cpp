#include "python/bit_generator.h"

#include <numpy/random/bitgen.h>

#include <cstdint>
#include <memory>
#include <utility>

#include "python/docs.h"
#include "python/method.h"
#include "python/stream.h"
#include "tfl_rng/generator_catalogue.h"

namespace py = pybind11;

namespace tvpython {
namespace {

// What NumPy calls, with the lock held and without the interpreter.

double nextDouble(void* ahead) noexcept { return static_cast<Ahead*>(ahead)->uniform(); }

std::uint32_t nextUint32(void* ahead) noexcept { return static_cast<Ahead*>(ahead)->word(); }

std::uint64_t nextUint64(void* ahead) noexcept { return static_cast<Ahead*>(ahead)->twoWords(); }

// What NumPy locks around its draws: the right to use the stream, so that a draw from the stream
// itself in another thread is noticed as everywhere else.
struct Lock {
  static constexpr char const* kNotOne = "NotALock";
  py::object stream;
  std::size_t entered = 0;
};

PyObject* enterLock(PyObject* self, PyObject* /*none*/) noexcept {
  return guarded([&] {
    Lock& lock = heldBy<Lock>(self);
    streamOf(lock.stream.ptr()).acquire();
    ++lock.entered;
    return py::none();
  });
}

PyObject* exitLock(PyObject* self, PyObject* const* /*exception*/, Py_ssize_t /*three*/,
                   PyObject* /*none*/) noexcept {
  return guarded([&] {
    Lock& lock = heldBy<Lock>(self);
    Stream& stream = streamOf(lock.stream.ptr());
    if (lock.entered == 0 || !stream.heldHere())
      refuse(Kind::thread, "NotLocked",
             "this lock is left without having been entered in this thread");
    --lock.entered;
    stream.release();
    return py::none();
  });
}

// What the capsule of a bit generator keeps alive, which in its turn lives as long as every
// Generator of NumPy on it: they copy the table of functions, and with it the stream's address.
struct Held {
  py::object stream;
  py::object lock;

  static constexpr char const* kCapsule = "BitGenerator";

  static void release(PyObject* capsule) noexcept {
    delete static_cast<Held*>(PyCapsule_GetContext(capsule));
  }
  // What the capsule holds; null for one of another maker's, and for what is no capsule.
  static Held* of(py::handle capsule) noexcept {
    if (!PyCapsule_IsValid(capsule.ptr(), kCapsule)) return nullptr;
    if (PyCapsule_GetDestructor(capsule.ptr()) != release) return nullptr;
    return static_cast<Held*>(PyCapsule_GetContext(capsule.ptr()));
  }
};

// Lets a new bit generator of NumPy's draw from a stream.
void attach(py::handle capsule, py::object const& stream) {
  Ahead& ahead = streamOf(stream.ptr()).ahead();
  auto* const functions =
      static_cast<bitgen_t*>(PyCapsule_GetPointer(capsule.ptr(), Held::kCapsule));
  if (!functions) throw py::error_already_set();
  if (functions->state)
    refuse(Kind::type, "AlreadyInitialised", "this capsule has its functions already");
  auto held = std::make_unique<Held>(Held{stream, py::cast(Lock{stream})});
  if (PyCapsule_SetContext(capsule.ptr(), held.get()) != 0 ||
      PyCapsule_SetDestructor(capsule.ptr(), Held::release) != 0)
    throw py::error_already_set();
  (void)held.release();
  *functions = {&ahead, nextUint64, nextUint32, nextDouble, nextUint64};
}

py::object held(py::handle capsule) {
  Held const* const all = Held::of(capsule);
  if (!all) return py::none();
  return py::make_tuple(all->stream, all->lock);
}

// (name, core class, whether it has substreams) of every generator.
py::list catalogue() {
  py::list rows;
#define TFL_GENERATOR(name, core, otherSpelling, family, ...) \
  rows.append(py::make_tuple(#name, #core, tfl_rng::Family::family == tfl_rng::Family::Substreams));
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
  return rows;
}

}  // namespace

void addBitGenerator(py::module_& module) {
  static PyMethodDef enter = {"__enter__", enterLock, METH_NOARGS, nullptr};
  static PyMethodDef exit = fastMethod("__exit__", exitLock, nullptr);
  py::class_<Lock> lock(module, "StreamLock", docs::kLock);
  classOf<Lock> = reinterpret_cast<PyTypeObject*>(lock.ptr());
  addMethod(lock, enter);
  addMethod(lock, exit);
  module.def("attach", attach);
  module.def("held", held);
  module.def("catalogue", catalogue);
}

}  // namespace tvpython
