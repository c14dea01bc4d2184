#pragma once

// What NumPy's bit generators need of a stream: the functions by which NumPy draws, and the lock.

#include <pybind11/pybind11.h>

namespace tvpython {

// For tvmathrng.bit_generators: the class StreamLock, attach(capsule, stream), held(capsule) and
// catalogue().
void addBitGenerator(pybind11::module_& module);

}  // namespace tvpython
