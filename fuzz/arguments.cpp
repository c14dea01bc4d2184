// Lists of arguments made from bytes, given to every builtin and every method: a call succeeds or
// is a host error, and one that was refused has moved no stream.

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "embedded_host/array.h"
#include "embedded_host/vm_context.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/stream_checks.h"
#include "host/tcos.h"
#include "rng/mr_functions.h"
#include "runtime/vm.h"

namespace {

using embedded_host::makeScalar;

// Functions, the class's constructor, methods and static methods, as programs call them.
constexpr char const* kCallees[] = {
    "rand",
    "randn",
    "randi",
    "randperm",
    "RandStream",
    "reset",
    "advance",
    "delete",
    "RandStream.global",
    "RandStream.default",
    "RandStream.list",
    "clearGlobalRandStream",
    "inLegacyMode",
    "getFactoryDefaultRandStreamType",
    "setDefaultRandStream",
    "talvor.internal.builtinhelper.convertSizeArgToDouble",
};
constexpr char const* kProperties[] = {"State",         "Substream", "RandnAlg",   "Antithetic",
                                       "FullPrecision", "Seed",      "Parameters", "StreamID"};
// A generator that can jump, since others advance as slowly as they draw.
constexpr char const* kStreamTypes[] = {"mrg32k3a", "philox4x32_10", "threefry4x64_20"};

constexpr char const* kTexts[] = {
    "double",     "single",        "like",       "seed",        "state",
    "twister",    "int8",          "uint8",      "int16",       "uint16",
    "int32",      "uint32",        "int64",      "uint64",      "logical",
    "NumStreams", "StreamIndices", "Seed",       "CellOutput",  "NormalTransform",
    "shuffle",    "mt19937ar",     "dsfmt19937", "mlfg6331_64", "mcg16807",
    "shr3cong",   "swb2712",       "philox",     "Ziggurat",    "Polar",
    "Inversion",  "Substream",     "legacy",     "RandStream",  "",
};
constexpr double kNumbers[] = {0,   1,      2,      3,      5,      -1,     0.5,    1e3,
                               1e6, 0x1p31, 0x1p32, 0x1p52, 0x1p53, 0x1p63, 0x1p64, 1e300};

template <class T>
txArrayPtr scalarOf(fuzz::ByteReader& input) {
  return makeScalar(input.take<T>());
}

txArrayPtr makeArgument(fuzz::ByteReader& input, txArray const& stream, int depth = 0);

double number(fuzz::ByteReader& input) {
  auto const choice = input.take<std::uint8_t>();
  if (choice < std::size(kNumbers)) return kNumbers[choice];
  return choice < 64 ? choice - 32.0 : input.take<double>();
}

txArrayPtr shaped(fuzz::ByteReader& input) {
  std::array<std::uint64_t, 3> const dims = {input.below(4), input.below(4), input.below(3)};
  txArrayPtr array = embedded_host::makeZeros(
      dims, static_cast<txClassID>(txClassDouble + static_cast<int>(input.below(10))),
      input.below(2) ? txComplexity::complex : txComplexity::real);
  std::size_t const bytes = array->numel() * embedded_host::elementBytes(array->classID());
  auto const values = input.takeBytes(bytes);
  if (!values.empty()) std::memcpy(array->data(), values.data(), values.size());
  return array;
}

txArrayPtr rowOf(fuzz::ByteReader& input) {
  std::vector<double> row(input.below(6));
  for (double& x : row) x = number(input);
  return embedded_host::makeArray<double>(std::array<std::uint64_t, 2>{1, row.size()}, row);
}

txArrayPtr cellOf(fuzz::ByteReader& input, txArray const& stream, int depth) {
  std::uint64_t const n = input.below(4);
  txArrayPtr cell = txCreateCell(std::array<std::uint64_t, 2>{1, n});
  for (std::uint64_t i = 0; i < n; ++i) cell->setCell(i, makeArgument(input, stream, depth + 1));
  return cell;
}

txArrayPtr makeArgument(fuzz::ByteReader& input, txArray const& stream, int depth) {
  constexpr int kDeepest = 3;
  switch (input.below(20)) {
    case 0:
    case 1:
    case 2:
      return makeScalar(number(input));
    case 3:
    case 4:
      return embedded_host::makeTextUtf8(input.oneOf(kTexts));
    case 5:
      return embedded_host::makeTextUtf8(input.takeText(input.below(40)));
    case 6:
      return embedded_host::makeString(u"twister");
    case 7:
      return embedded_host::makeMissingString();
    case 8:
      return rowOf(input);
    case 9:
      return shaped(input);
    case 10:
      return embedded_host::makeComplex(number(input), number(input));
    case 11:
      return embedded_host::toSparse(*rowOf(input));
    case 12:
      return txCreateLogical(input.below(2));
    case 13:
      return scalarOf<float>(input);
    case 14:
      return scalarOf<std::int8_t>(input);
    case 15:
      return scalarOf<std::uint32_t>(input);
    case 16:
      return scalarOf<std::uint64_t>(input);
    case 17:
      return embedded_host::makeClassIdentifier(u"single");
    case 18:
      return depth < kDeepest ? cellOf(input, stream, depth) : makeScalar(1.0);
    default:
      return txShare(stream);
  }
}

// The states of the global stream and of an object's stream, empty once that is deleted.
struct States {
  fuzz::StateBytes global;
  fuzz::StateBytes own;
  bool operator==(States const&) const = default;
};

States statesNow(txArray const& stream) {
  States states{fuzz::stateOf(*mrGetGlobalStream()), {}};
  txArrayPtr const handle = txGetProperty(stream, "StreamID");
  if (*handle->dataAs<std::uint64_t>() != 0)
    states.own = fuzz::stateOf(*mrGetCPPRandStreamFromTxArray(&stream));
  return states;
}

// Whether an error may come after drawing began.
bool late(std::string const& identifier) {
  return identifier == "TALVOR:nomem" || identifier == "TALVOR:RandStream:UnexpectedPluginError";
}

void callOne(runtime::Vm& vm, fuzz::ByteReader& input, txArrayPtr const& stream) {
  std::size_t const callee = input.below(std::size(kCallees) + 2);
  int const nlhs = static_cast<int>(input.below(4));
  std::vector<txArrayPtr> arguments;
  if (input.below(2)) arguments.push_back(txShare(*stream));
  for (std::size_t n = input.below(7); n > 0; --n)
    arguments.push_back(makeArgument(input, *stream));
  std::vector<txArray const*> borrowed(arguments.size());
  std::ranges::transform(arguments, borrowed.begin(), &txArrayPtr::get);

  States const before = statesNow(*stream);
  try {
    if (callee < std::size(kCallees)) {
      vm.call(kCallees[callee], borrowed, nlhs);
    } else if (callee == std::size(kCallees)) {
      txGetProperty(*stream, input.oneOf(kProperties));
    } else if (!arguments.empty()) {
      embedded_host::setProperty(*stream, input.oneOf(kProperties), *arguments.back());
    }
  } catch (foundation::core::except::AnyException const& error) {
    fuzz::check(*error.text() != '\0', "errors have a text");
    fuzz::check(late(error.GetID()) || statesNow(*stream) == before,
                "a refused call has moved no stream");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  fuzz::ByteReader input(data, size);
  runtime::Vm vm;
  embedded_host::EnterVm const inside(vm.context());
  vm.context().useSettingsFile("no-such-file.toml");
  vm.context().setWarningSink([](auto const&, std::string const&) {});
  txArrayPtr const type = txCreateText(input.oneOf(kStreamTypes));
  txArrayPtr const stream = vm.call("RandStream", {type.get()});
  constexpr int kMostCalls = 20;
  for (int calls = 0; calls < kMostCalls && !input.empty(); ++calls) callOne(vm, input, stream);
  return 0;
}
