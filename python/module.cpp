// tvmathrng for Python: the extension module behind the package.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include "python/bit_generator.h"
#include "python/docs.h"
#include "python/errors.h"
#include "python/objects.h"
#include "python/sampling.h"
#include "python/stream.h"

PYBIND11_MODULE(_tvmathrng, module) {
  using namespace tvpython;
  pybind11::options options;
  options.disable_function_signatures();  // the docstrings have better ones
  // Classes and functions are found where users import them from, which pickling relies on.
  module.attr("__name__") = "tvmathrng";
  // NumPy is loaded by one thread. In the middle of a first call pybind11 would hold a lock that
  // other threads wait for without leaving the interpreter to this one.
  pybind11::dtype::of<double>();
  registerErrors();
  guardObjects();
  auto type = addStreamClass(module);
  addSampling(module, type);
  addBitGenerator(module);
  module.def("generators", generatorNames, docs::kGenerators);
  module.attr("__version__") = TV_VERSION;
}
