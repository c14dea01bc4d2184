#include "python/stream.h"

#include <pybind11/numpy.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "python/docs.h"
#include "python/errors.h"
#include "python/method.h"
#include "python/values.h"
#include "rng/generator_names.h"
#include "rng/mr_functions.h"

namespace py = pybind11;

namespace tvpython {
namespace {

// The name that the library knows a generator by.
char const* canonicalName(std::string const& given) {
  if (auto const* const generator = rng::findGenerator(given)) return generator->name;
  std::string text = "There is no generator named \"" + given + "\".";
  std::string const meant = rng::closestGenerator(given);
  if (!meant.empty()) text += " Did you mean \"" + meant + "\"?";
  throw Refusal(Kind::value, "TALVOR:RandStream:create:UnknownRNGType",
                text + " tvmathrng.generators() lists them: " +
                    py::str(", ").attr("join")(generatorNames()).cast<std::string>());
}

// The generators that have a name keep their state in one array, of one of three classes.
struct StateLayout {
  py::dtype type;
  std::size_t length;
};
StateLayout stateLayout(randstream const& stream) {
  txClassID classID;
  std::uint64_t length;
  stream.getStateComponentTypes(1, &classID, &length);
  char const* const type = classID == txClassUint32 ? "u4" : classID == txClassUint64 ? "u8" : "f8";
  return {py::dtype(type), length};
}

py::array readState(py::handle self) {
  Stream::Use const use(streamOf(self.ptr()));
  StateLayout const layout = stateLayout(*use);
  py::array state(layout.type, layout.length);
  void* const elements = state.mutable_data();
  use->getStateComponents(1, &elements);
  return state;
}

void writeState(py::handle self, py::handle value) {
  Stream& stream = streamOf(self.ptr());
  // Its making may run code of the caller's: no right to the stream yet.
  auto const state = py::reinterpret_borrow<py::array>(
      py::module_::import("numpy").attr("ascontiguousarray")(value));
  Stream::Use const use(stream);
  StateLayout const layout = stateLayout(*use);
  if (!state.dtype().equal(layout.type))
    refuseAsLibrary("TALVOR:RandStream:set", "InvalidStateClass", {use->generatorType()});
  if (static_cast<std::size_t>(state.size()) != layout.length)
    refuseAsLibrary("TALVOR:RandStream:set", "InvalidStateLen", {use->generatorType()});
  void const* const elements = state.data();
  use->setStateComponents(1, &elements);
}

py::object readParameters(py::handle self) {
  randstream::streamParamsStruct p;
  Stream::Use const use(streamOf(self.ptr()));
  try {
    use->getStreamParameters(&p);
  } catch (foundation::core::except::AnyException const&) {
    refuse(Kind::value, "NoSubstreams",
           std::string("generator ") + use->generatorType() + " has no streams and substreams");
  }
  py::object const type = py::module_::import("tvmathrng.parameters").attr("Parameters");
  return type(p.numStreams, p.numSubstreams, p.log2StreamLen, p.log2SubstreamLen);
}

void writeSubstream(py::handle self, py::handle value) {
  std::uint64_t const index = readCount(value, "substream");
  Stream::Use(streamOf(self.ptr()))->setSubstream(index);
}

void writeRandnAlg(py::handle self, py::handle value) {
  std::string const name = readText(value, "randn_alg");
  Stream::Use(streamOf(self.ptr()))->setRandnAlg(name.c_str());
}

constexpr char const* kDefaultGenerator = "mt19937ar";

// What the constructor sets besides the sequence. Errors leave no stream behind.
void initialise(py::handle self, py::object const& generator, py::object const& seed,
                py::object const& streamIndex, py::object const& numStreams,
                py::object const& substream, py::object const& randnAlg,
                py::object const& antithetic, py::object const& fullPrecision) {
  // RandStream(7), as NumPy's users write it.
  bool const seedOnly = seed.is(py::ellipsis()) && (generator.is_none() || wholeNumber(generator));
  py::object const given = seedOnly                  ? generator
                           : seed.is(py::ellipsis()) ? py::object(py::int_(0))
                                                     : seed;
  auto stream =
      makeStream(seedOnly ? kDefaultGenerator : readText(generator, "generator"),
                 given.is_none() ? chosenSeed() : readSeed(given, "TALVOR:RandStream:create"),
                 readCount(streamIndex, "stream_index"), readCount(numStreams, "num_streams"));
  {
    Stream::Use const settings(*stream);
    settings->setFullPrecision(readFlag(fullPrecision, "full_precision"));
    settings->setAntithetic(readFlag(antithetic, "antithetic"));
    if (!randnAlg.is_none()) settings->setRandnAlg(readText(randnAlg, "randn_alg").c_str());
    settings->setSubstream(readCount(substream, "substream"));
  }
  put(self.ptr(), std::move(stream));
}

void reset(py::handle self, py::object const& seed) {
  Stream& stream = streamOf(self.ptr());
  std::uint32_t const start =
      seed.is_none() ? stream.constants().seed() : readSeed(seed, "TALVOR:RandStream:reset");
  Stream::Use(stream)->reset(start);
}

void advance(py::handle self, py::object const& n) {
  std::uint64_t const draws = readCount(n, "n");
  draw(streamOf(self.ptr()), draws, [&](randstream& stream) { stream.advance(draws); });
}

// Of constants alone, so that it does not matter who draws from the stream meanwhile.
std::unique_ptr<Stream> atSubstream(py::handle self, py::object const& k) {
  std::uint64_t const index = readCount(k, "k");
  randstream const& family = streamOf(self.ptr()).constants();
  auto item =
      makeStream(family.generatorType(), family.seed(), family.streamIndex(), family.numStreams());
  Stream::Use const settings(*item);
  settings->setFullPrecision(family.fullPrecision());
  settings->setAntithetic(family.antithetic());
  settings->setRandnAlg(family.getRandnAlg());
  settings->setSubstream(index);
  return item;
}

}  // namespace

void Stream::refuseUse() {
  refuse(Kind::thread, "StreamInUse",
         "the stream is in use by another thread; give each thread a stream of its own, such as "
         "stream.at_substream(k) for work item k");
}

void Stream::acquire() {
  if (tryToHold()) return;
  constexpr bool kEndedBySignals = true;
  constexpr PY_TIMEOUT_T kForever = -1;
  for (PyLockStatus status = PY_LOCK_INTR; status != PY_LOCK_ACQUIRED;) {
    {
      OtherThreads const meanwhile;
      status = PyThread_acquire_lock_timed(lock_.get(), kForever, kEndedBySignals);
    }
    if (status == PY_LOCK_INTR && PyErr_CheckSignals() != 0) throw py::error_already_set();
  }
  noteHolder();
  ++holds_;
}

Ahead& Stream::ahead() {
  if (!ahead_) ahead_ = std::make_unique<Ahead>(*Use(*this));
  return *ahead_;
}

std::unique_ptr<Stream> makeStream(std::string const& generator, std::uint32_t seed,
                                   std::uint64_t streamIndex, std::uint64_t numStreams) {
  char const* const name = canonicalName(generator);
  if (numStreams == 0) refuseAsLibrary("TALVOR:RandStream:create", "BadNumStreams");
  if (streamIndex >= numStreams)
    throw Refusal(Kind::value, "TALVOR:RandStream:create:BadStreamIndex",
                  "stream_index counts from 0 and must be below num_streams, which is " +
                      std::to_string(numStreams) + "; it is " + std::to_string(streamIndex));
  return std::make_unique<Stream>(std::unique_ptr<randstream>(
      mrCreateRNGStream(name, numStreams, streamIndex, seed, nullptr, 0)));
}

py::list generatorNames() {
  py::list names;
  for (char const* const name : tfl_rng::generatorNames()) names.append(name);
  return names;
}

py::class_<Stream> addStreamClass(py::module_& module) {
  py::class_<Stream> type(module, "RandStream", docs::kRandStream);
  classOf<Stream> = reinterpret_cast<PyTypeObject*>(type.ptr());

  addMaker(type, "__init__", "RandStream", initialise, py::arg("generator") = kDefaultGenerator,
           py::arg("seed") = py::ellipsis(), py::kw_only(), py::arg("stream_index") = 0,
           py::arg("num_streams") = 1, py::arg("substream") = 0, py::arg("randn_alg") = py::none(),
           py::arg("antithetic") = false, py::arg("full_precision") = true);
  type.def("reset", reset, py::arg("seed") = py::none(), docs::kReset)
      .def("advance", advance, py::arg("n"), docs::kAdvance)
      .def("at_substream", atSubstream, py::arg("k"), docs::kAtSubstream)
      .def(
          "bit_generator",
          [](py::object const& self) {
            return py::module_::import("tvmathrng.bit_generators").attr("of_stream")(self);
          },
          docs::kBitGenerator);
  addStreamText(type);

  // Values that only the constructor and reset set are read without the right to the stream.
  auto const constant = [&](char const* name, auto get, char const* doc) {
    type.def_property_readonly(
        name, [get](py::handle self) { return get(streamOf(self.ptr()).constants()); }, doc);
  };
  constant(
      "generator", [](randstream const& s) { return s.generatorType(); }, docs::kGenerator);
  constant(
      "seed", [](randstream const& s) { return s.seed(); }, docs::kSeed);
  constant(
      "num_streams", [](randstream const& s) { return s.numStreams(); }, docs::kNumStreams);
  constant(
      "stream_index", [](randstream const& s) { return s.streamIndex(); }, docs::kStreamIndex);

  auto const variable = [&](char const* name, auto get, auto set, char const* doc) {
    type.def_property(
        name, [get](py::handle self) { return get(*Stream::Use(streamOf(self.ptr()))); }, set, doc);
  };
  variable(
      "substream", [](randstream& s) { return s.getSubstream(); }, writeSubstream,
      docs::kSubstream);
  variable(
      "randn_alg", [](randstream& s) { return std::string(s.getRandnAlg()); }, writeRandnAlg,
      docs::kRandnAlg);
  variable(
      "antithetic", [](randstream& s) { return s.antithetic(); },
      [](py::handle self, py::handle on) {
        bool const flag = readFlag(on, "antithetic");
        Stream::Use(streamOf(self.ptr()))->setAntithetic(flag);
      },
      docs::kAntithetic);
  variable(
      "full_precision", [](randstream& s) { return s.fullPrecision(); },
      [](py::handle self, py::handle on) {
        bool const flag = readFlag(on, "full_precision");
        Stream::Use(streamOf(self.ptr()))->setFullPrecision(flag);
      },
      docs::kFullPrecision);
  type.def_property("state", readState, writeState, docs::kState);
  type.def_property_readonly("parameters", readParameters, docs::kParameters);
  return type;
}

}  // namespace tvpython
