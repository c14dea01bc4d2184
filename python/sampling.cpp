#include "python/sampling.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdint>
#include <memory>
#include <string>

#include "python/arguments.h"
#include "python/docs.h"
#include "python/errors.h"
#include "python/method.h"
#include "python/values.h"

namespace py = pybind11;

namespace tvpython {
namespace {

constexpr Element kReals[] = {Element::float64, Element::float32, Element::complex128,
                              Element::complex64};
constexpr Element kWholes[] = {Element::int64,   Element::int32,   Element::int16,  Element::int8,
                               Element::uint64,  Element::uint32,  Element::uint16, Element::uint8,
                               Element::boolean, Element::float64, Element::float32};
constexpr Element kPositions[] = {Element::int64, Element::int32, Element::uint64, Element::uint32,
                                  Element::float64};

// Calls use(T{}) with the C++ type of a real element.
template <class Use>
void withRealType(Element element, Use const& use) {
  switch (element) {
    case Element::float64:
      return use(double{});
    case Element::float32:
      return use(float{});
    case Element::int8:
      return use(std::int8_t{});
    case Element::int16:
      return use(std::int16_t{});
    case Element::int32:
      return use(std::int32_t{});
    case Element::int64:
      return use(std::int64_t{});
    case Element::uint8:
      return use(std::uint8_t{});
    case Element::uint16:
      return use(std::uint16_t{});
    case Element::uint32:
      return use(std::uint32_t{});
    case Element::uint64:
      return use(std::uint64_t{});
    case Element::boolean:
      return use(bool{});
    case Element::complex128:
    case Element::complex64:
      break;
  }
}

// Uniforms and normals: a complex element is two numbers.
struct Uniform {
  template <class T>
  static void fill(randstream& stream, T* out, std::size_t n, bool /*complex*/) {
    stream.randuFcn(out, n);
  }
};
struct Normal {
  template <class T>
  static void fill(randstream& stream, T* out, std::size_t n, bool complex) {
    stream.randnFcn(out, n, complex);
  }
};

template <class Distribution>
py::object sampleReals(Stream& stream, Call const& call) {
  if (call.isPlain(0)) {  // the hot case: one number
    double value;
    Stream::Use const use(stream);
    Distribution::fill(*use, &value, 1, false);
    return py::reinterpret_steal<py::object>(PyFloat_FromDouble(value));
  }
  Result result = readResult(call, readShape(call, 0), kReals);
  bool const complex = rowOf(result.element).kind == 'c';
  bool const wide = result.element == Element::float64 || result.element == Element::complex128;
  std::size_t const numbers = result.count * (complex ? 2 : 1);
  draw(stream, numbers, [&](randstream& source) {
    if (wide)
      Distribution::fill(source, result.as<double>(), numbers, complex);
    else
      Distribution::fill(source, result.as<float>(), numbers, complex);
  });
  return std::move(result).finish();
}

void checkLimits(Limits const& limits, Element element) {
  checkRandiLimits(limits.lowest, limits.highest);
  ElementRow const& row = rowOf(element);
  if (limits.lowest < row.lowest || limits.highest > row.highest)
    refuse(Kind::value, "LimitsDoNotFit",
           std::string("elements of dtype ") + row.name + " cannot hold all numbers from " +
               std::to_string(static_cast<long long>(limits.lowest)) + " to " +
               std::to_string(static_cast<long long>(limits.highest)));
}

// Integers of 64 bits come from the library as doubles, which hold them exactly.
template <class T>
concept ComesAsDouble = std::same_as<T, std::int64_t> || std::same_as<T, std::uint64_t>;

template <class T>
void fillWholes(randstream& source, Limits const& limits, T* out, std::size_t n) {
  if constexpr (ComesAsDouble<T>) {
    std::array<double, 1000> doubles;
    for (std::size_t at = 0; at < n; at += doubles.size()) {
      std::size_t const len = std::min(doubles.size(), n - at);
      source.randiFcn(limits.lowest, limits.highest, doubles.data(), len);
      std::transform(doubles.begin(), doubles.begin() + len, out + at,
                     [](double value) { return static_cast<T>(value); });
    }
  } else {
    source.randiFcn(limits.lowest, limits.highest, out, n);
  }
}

py::object sampleWholes(Stream& stream, Call const& call) {
  if (call.positional == 0)
    refuse(Kind::type, "InvalidLimits",
           "randi() needs limits: n, for 1 to n, or (lowest, highest)");
  Limits const limits = readLimits(call.arguments[0]);
  if (call.isPlain(1)) {
    double value;
    Stream::Use const use(stream);
    use->randiFcn(limits.lowest, limits.highest, &value, 1);
    return py::reinterpret_steal<py::object>(PyLong_FromLongLong(static_cast<long long>(value)));
  }
  Result result = readResult(call, readShape(call, 1), kWholes);
  checkLimits(limits, result.element);
  draw(stream, result.count, [&](randstream& source) {
    withRealType(result.element, [&](auto element) {
      fillWholes(source, limits, result.as<decltype(element)>(), result.count);
    });
  });
  return std::move(result).finish();
}

// k of the numbers 0 to n-1 in random order: the library's positions, which count from 1, less one.
py::object samplePositions(Stream& stream, Call const& call) {
  if (call.positional < 1 || call.positional > 2)
    refuse(Kind::type, "InvalidNumber", "randperm() takes n, or n and k");
  if (call.size()) refuse(Kind::type, "UnknownArgument", "randperm() has no argument 'size' but k");
  std::uint64_t const n = readCount(call.arguments[0], "n");
  bool const all = call.positional == 1 || call.arguments[1] == Py_None;
  std::uint64_t const k = all ? n : readCount(call.arguments[1], "k");
  if (k > n) refuseAsLibrary("TALVOR:RandStream:randperm", "inputKTooLarge");
  if (static_cast<double>(n) >= 0x1p53)
    refuseAsLibrary("TALVOR:RandStream:randperm", "inputNTooLarge");

  Result result = readResult(call, Shape{static_cast<Py_ssize_t>(k)}, kPositions);
  ElementRow const& row = rowOf(result.element);
  if (n > 0 && static_cast<double>(n - 1) > row.highest)
    refuse(Kind::value, "LimitsDoNotFit",
           std::string("elements of dtype ") + row.name + " cannot hold all numbers below " +
               std::to_string(n));
  auto const positions = std::make_unique_for_overwrite<double[]>(k);
  draw(stream, k, [&](randstream& source) {
    if (all)
      source.randpermFcn(positions.get(), n);
    else
      source.randkpermFcn(positions.get(), k, static_cast<double>(n));
    withRealType(result.element, [&](auto element) {
      using T = decltype(element);
      std::transform(positions.get(), positions.get() + k, result.as<T>(),
                     [](double position) { return static_cast<T>(position - 1); });
    });
  });
  return std::move(result).finish();
}

// The global stream: a RandStream object, made when it is first asked for.
py::object& globalStream() {
  // Never destroyed: the interpreter may be gone by then.
  static auto& stream = *new py::object;
  if (!stream) stream = py::cast(makeStream("mt19937ar", 0, 0, 1));
  return stream;
}

py::object setGlobalStream(py::object const& stream) {
  streamOf(stream.ptr());
  return std::exchange(globalStream(), stream);
}

// One sampling function: its name, what it does, and what help() says.
struct Rand {
  static constexpr char const* kName = "rand";
  static constexpr auto kRun = sampleReals<Uniform>;
  static constexpr char const* kDoc = docs::kRand;
  static constexpr char const* kGlobalDoc = docs::kGlobalRand;
};
struct Randn {
  static constexpr char const* kName = "randn";
  static constexpr auto kRun = sampleReals<Normal>;
  static constexpr char const* kDoc = docs::kRandn;
  static constexpr char const* kGlobalDoc = docs::kGlobalRandn;
};
struct Randi {
  static constexpr char const* kName = "randi";
  static constexpr auto kRun = sampleWholes;
  static constexpr char const* kDoc = docs::kRandi;
  static constexpr char const* kGlobalDoc = docs::kGlobalRandi;
};
struct Randperm {
  static constexpr char const* kName = "randperm";
  static constexpr auto kRun = samplePositions;
  static constexpr char const* kDoc = docs::kRandperm;
  static constexpr char const* kGlobalDoc = docs::kGlobalRandperm;
};

// The interpreter calls these without packing arguments, which costs more than drawing a number.
template <class Function>
PyObject* onStream(PyObject* self, PyObject* const* arguments, Py_ssize_t count,
                   PyObject* names) noexcept {
  return guarded([&] {
    return Function::kRun(streamOf(self), {Function::kName, arguments, count, names});
  });
}

template <class Function>
PyObject* onGlobalStream(PyObject* /*module*/, PyObject* const* arguments, Py_ssize_t count,
                         PyObject* names) noexcept {
  return guarded([&] {
    // Another thread may set another global stream meanwhile.
    py::object const stream = globalStream();
    return Function::kRun(streamOf(stream.ptr()), {Function::kName, arguments, count, names});
  });
}

template <class Function>
void add(py::module_& module, py::class_<Stream>& type) {
  static PyMethodDef method = fastMethod(Function::kName, onStream<Function>, Function::kDoc);
  static PyMethodDef function =
      fastMethod(Function::kName, onGlobalStream<Function>, Function::kGlobalDoc);
  addMethod(type, method);
  addFunction(module, function);
}

}  // namespace

void addSampling(py::module_& module, py::class_<Stream>& type) {
  add<Rand>(module, type);
  add<Randn>(module, type);
  add<Randi>(module, type);
  add<Randperm>(module, type);
  module.def(
      "global_stream", [] { return globalStream(); }, docs::kGlobalStream);
  module.def("set_global_stream", setGlobalStream, py::arg("stream"), docs::kSetGlobalStream);
}

}  // namespace tvpython
