#pragma once

// A stream as a bit generator of NumPy: numpy.random.Generator and RandomState draw from it.

#include <pybind11/pybind11.h>

#include "python/stream.h"

namespace tvpython {

// Adds the class BitGenerator to the module, and to RandStream the method that makes one.
void addBitGenerator(pybind11::module_& module, pybind11::class_<Stream>& streams);

}  // namespace tvpython
