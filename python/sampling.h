#pragma once

// rand, randn, randi and randperm, as methods of RandStream and as functions on the global stream.

#include <pybind11/pybind11.h>

#include "python/stream.h"

namespace tvpython {

// Adds them to the class and to the module, and the module's global_stream and set_global_stream.
void addSampling(pybind11::module_& module, pybind11::class_<Stream>& type);

}  // namespace tvpython
