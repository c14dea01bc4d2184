// The host-language class RandStream. Its objects are handles: copies of one share its stream.

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include "builtins/stream_methods.h"
#include "embedded_host/array.h"
#include "embedded_host/messages.h"
#include "embedded_host/object_system.h"
#include "embedded_host/text.h"
#include "errors/argument_counts.h"
#include "errors/keys.h"
#include "rng/generator_names.h"
#include "rng/mr_functions.h"
#include "runtime/loaded.h"
#include "runtime/rand_stream_options.h"
#include "vmstate/global_stream.h"

namespace runtime {
namespace {

using embedded_host::ClassDefinition;
using embedded_host::Function;
using embedded_host::makeScalar;
using embedded_host::Property;
using embedded_host::setStoredProperty;
using embedded_host::storedProperty;
using SharedLoaded = std::shared_ptr<Loaded>;

constexpr char const* kClassName = "RandStream";
constexpr char const* kHandle = "StreamID";

// Owns a stream handle until an object takes it.
class HandleOwner {
 public:
  explicit HandleOwner(txArrayPtr handle) : handle_(std::move(handle)) {}
  ~HandleOwner() {
    if (txArray const* const handle = handle_.get()) release(*handle);
  }
  HandleOwner(HandleOwner const&) = delete;
  HandleOwner& operator=(HandleOwner const&) = delete;

  txArrayPtr take() noexcept { return std::move(handle_); }

  static void release(txArray const& handle) noexcept {
    txArray const* args[] = {&handle};
    RandStream::deletefcn(0, nullptr, 1, args);
  }

 private:
  txArrayPtr handle_;
};

// The object's handle; null for an object that was deleted or has none yet.
txArray const* liveHandle(txArray const& object) {
  txArray const* const handle = storedProperty(object, kHandle);
  return handle && *handle->dataAs<std::uint64_t>() != 0 ? handle : nullptr;
}

txArray const& requireHandle(txArray const& object) {
  embedded_host::ClassPtr const definition = embedded_host::classOf(object);
  txArray const* const handle =
      definition && definition->name == kClassName ? liveHandle(object) : nullptr;
  if (!handle) errors::raise(component_TALVOR::catalog_RandStream::key_InvalidHandle(), 1);
  return *handle;
}

// Whether only one owner is left beside the handle. Where that is the record of the global stream,
// nothing else stands for the stream: no other object, neither the default nor the legacy stream.
bool hasOneOtherOwner(txArray const& handle) noexcept {
  auto const* const owner =
      reinterpret_cast<std::shared_ptr<randstream> const*>(*handle.dataAs<std::uint64_t>());
  return owner->use_count() == 2;
}

// Lets go of the stream behind a handle. It goes on as the global stream while others own it too.
void dropStream(Loaded& loaded, txArray const& handle) noexcept {
  if (loaded.vm) {
    try {
      embedded_host::EnterVm const inside(*loaded.vm);
      txArray const* args[] = {&handle};
      if (hasOneOtherOwner(handle)) clearGlobalRandStreamIfMatches(0, nullptr, 1, args);
    } catch (...) {
      // Another thread is in the VM; its global stream stays what it is.
    }
  }
  HandleOwner::release(handle);
}

// What an object knows of its stream beside the stream itself.
struct Identity {
  txArrayPtr type;
  txArrayPtr seed;
  txArrayPtr numStreams;
  txArrayPtr streamIndex;
};

void store(txArray& object, Identity identity) {
  setStoredProperty(object, "Type", std::move(identity.type));
  setStoredProperty(object, "Seed", std::move(identity.seed));
  setStoredProperty(object, "NumStreams", std::move(identity.numStreams));
  setStoredProperty(object, "StreamIndex", std::move(identity.streamIndex));
}

txArrayPtr makeStreamObject(Loaded const& loaded, txArrayPtr handle, Identity identity) {
  HandleOwner owner(std::move(handle));
  txArrayPtr object = embedded_host::makeObject(loaded.vm->classes().find(kClassName));
  store(*object, std::move(identity));
  setStoredProperty(*object, kHandle, owner.take());
  return object;
}

// Native properties.

txArrayPtr readNative(char const* name, txArray const& object) {
  txArrayPtr const text = txCreateText(std::string_view(name));
  txArray const* args[] = {text.get(), &object};
  txArrayPtr value;
  RandStream::getset(1, &value, 2, args);
  return value;
}

void writeNative(char const* name, txArray const& object, txArray const& value) {
  txArrayPtr const text = txCreateText(std::string_view(name));
  txArray const* args[] = {text.get(), &object, &value};
  RandStream::getset(0, nullptr, 3, args);
}

Property nativeProperty(char const* name) {
  return {
      .name = name,
      .get = [name](txArray const& object) { return readNative(name, object); },
      .set = [name](txArray& object, txArray const& value) { writeNative(name, object, value); }};
}

Property nativeReadOnly(char const* name) {
  // Not every generator has parameters, so listings leave them out.
  return {.name = name,
          .get = [name](txArray const& object) { return readNative(name, object); },
          .readOnly = true,
          .hidden = true};
}

// RandStream(type, name, value, ...).

txArrayPtr construct(Loaded const& loaded, RandStreamOptions const& options,
                     std::uint64_t streamIndex) {
  Identity identity{txCreateText(std::string_view(options.type)), makeScalar(options.seed),
                    makeScalar(options.numStreams), makeScalar(streamIndex)};
  constexpr std::array<std::uint64_t, 2> kEmpty = {0, 0};
  txArrayPtr const noParameters = txCreateUninitialized(kEmpty, txClassDouble);
  txArray const* args[] = {identity.type.get(), identity.numStreams.get(),
                           identity.streamIndex.get(), identity.seed.get(), noParameters.get()};
  txArrayPtr handle;
  RandStream::create(1, &handle, 5, args);
  txArrayPtr object = makeStreamObject(loaded, std::move(handle), std::move(identity));
  for (RandStreamOptions::Setting const& setting : options.settings) {
    try {
      writeNative(setting.property, *object, *setting.value);
    } catch (foundation::core::except::AnyException& error) {
      error.setFaultyArgument(setting.position);
      throw;
    }
  }
  return object;
}

void constructor(Loaded const& loaded, int nlhs, txArrayPtr* plhs,
                 std::span<txArray const* const> args) {
  if (nlhs > 1) matrix::detail::error_maxlhs();
  RandStreamOptions const options = parseRandStreamOptions(args);
  std::span<std::uint64_t const> const indices = options.streamIndices;
  if (indices.size() == 1 && !options.cellOutput) {
    plhs[0] = construct(loaded, options, indices[0]);
    return;
  }
  txArrayPtr cell = txCreateCell(std::array<std::uint64_t, 2>{1, indices.size()});
  for (std::size_t i = 0; i < indices.size(); ++i)
    cell->setCell(i, construct(loaded, options, indices[i]));
  plhs[0] = std::move(cell);
}

// Methods.

// reset(s), reset(s, seed): the object keeps the seed too.
void reset(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  txArrayPtr seed = makeScalar(std::uint32_t{0});
  RandStream::resetFcn(nlhs, plhs, nrhs, prhs);
  if (nrhs < 2) return;
  *seed->dataAs<std::uint32_t>() = static_cast<std::uint32_t>(prhs[1]->scalarAsDouble());
  txArrayPtr const object = txShare(*prhs[0]);
  setStoredProperty(*object, "Seed", std::move(seed));
}

// What an object tells of a stream.
Identity identityOf(randstream const& stream, txArrayPtr type) {
  return {std::move(type), makeScalar(std::uint32_t{stream.seed()}),
          makeScalar(std::uint64_t{stream.numStreams()}),
          makeScalar(std::uint64_t{stream.streamIndex() + 1})};
}

// restore(s, x): the object tells of the stream that the snapshot was taken of.
void restore(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  errors::checkCounts(nlhs, 0, nrhs, 2, 2);
  RandStream::restoreFcn(nlhs, plhs, nrhs, prhs);
  txArrayPtr const object = txShare(*prhs[0]);
  store(*object,
        identityOf(*mrGetCPPRandStreamFromTxArray(prhs[0]), txGetProperty(*object, "Type")));
}

// delete(s): the object stays behind without a stream. Deleting it again does nothing.
void deleteObject(Loaded& loaded, int nlhs, int nrhs, txArray const** prhs) {
  errors::checkCounts(nlhs, 0, nrhs, 1, 1);
  txArray const* const live = liveHandle(*prhs[0]);
  if (!live) return;
  txArrayPtr const handle = txShare(*live);
  txArrayPtr const object = txShare(*prhs[0]);
  setStoredProperty(*object, kHandle, makeScalar(std::uint64_t{0}));
  dropStream(loaded, *handle);
}

// Static methods.

// The object of the global stream; the same one as long as the stream is.
txArrayPtr globalObject(Loaded& loaded) {
  randstream const* const global = mrGetGlobalStream();
  if (loaded.globalObject && liveHandle(*loaded.globalObject) &&
      mrGetCPPRandStreamFromTxArray(loaded.globalObject.get()) == global)
    return txShare(*loaded.globalObject);
  std::array<txArrayPtr, 5> parts;
  getsetGlobalRandStream(5, parts.data(), 0, nullptr);
  txArrayPtr object = makeStreamObject(
      loaded, std::move(parts[0]),
      {std::move(parts[1]), std::move(parts[2]), std::move(parts[3]), std::move(parts[4])});
  loaded.globalObject = txShare(*object);
  return object;
}

// s = RandStream.global(); RandStream.global(s); previous = RandStream.global(s).
void global(Loaded& loaded, int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  errors::checkCounts(nlhs, 1, nrhs, 0, 1);
  if (nrhs == 0) {
    plhs[0] = globalObject(loaded);
    return;
  }
  txArray const* handle = &requireHandle(*prhs[0]);
  txArrayPtr previous = nlhs == 1 ? globalObject(loaded) : nullptr;
  txArrayPtr next = txShare(*prhs[0]);
  getsetGlobalRandStream(0, nullptr, 1, &handle);
  loaded.globalObject = std::move(next);
  if (previous) plhs[0] = std::move(previous);
}

// RandStream.default(s), RandStream.default([]). Global streams are made after the default one by
// the stream factory, so that it must know the generator: the legacy stream would fail every draw.
void setDefault(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  errors::checkCounts(nlhs, 0, nrhs, 1, 1);
  if (!prhs[0]->isEmpty()) {
    char const* const type = mrGetCPPRandStreamFromTxArray(prhs[0])->generatorType();
    if (!rng::generatorNamed(type))
      errors::raise(embedded_host::HostKey("TALVOR:RandStream:default:CannotMakeAnother", {type}),
                    1);
  }
  setDefaultRandStream(nlhs, plhs, nrhs, prhs);
}

// RandStream.restore(x): a new stream from a snapshot.
void createRestored(Loaded const& loaded, int nlhs, txArrayPtr* plhs, int nrhs,
                    txArray const** prhs) {
  errors::checkCounts(nlhs, 1, nrhs, 1, 1);
  txArrayPtr handle;
  RandStream::restoreFcn(1, &handle, nrhs, prhs);
  plhs[0] = makeStreamObject(loaded, std::move(handle), {});
  randstream const& stream = *mrGetCPPRandStreamFromTxArray(plhs[0].get());
  store(*plhs[0], identityOf(stream, txCreateText(std::string_view(stream.generatorType()))));
}

// RandStream.list(): the names of the generators.
void list(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** /*prhs*/) {
  errors::checkCounts(nlhs, 1, nrhs, 0, 0);
  auto const names = tfl_rng::generatorNames();
  txArrayPtr list = embedded_host::makeStrings(std::array<std::uint64_t, 2>{names.size(), 1});
  for (std::size_t i = 0; i < names.size(); ++i)
    embedded_host::setString(*list, i, embedded_host::utf8ToUtf16(names[i]));
  plhs[0] = std::move(list);
}

}  // namespace

void addRandStreamClass(SharedLoaded const& loaded) {
  // An object behind the first argument is one of the builtin's, such as rand(2,'like',s).
  ClassDefinition definition{.name = kClassName, .handle = true, .objectFirst = true};
  definition.constructor = [loaded](int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
    constructor(*loaded, nlhs, plhs, std::span(prhs, static_cast<std::size_t>(nrhs)));
  };
  definition.properties = {
      {.name = "Type", .readOnly = true},
      {.name = "Seed", .readOnly = true},
      {.name = "NumStreams", .readOnly = true},
      {.name = "StreamIndex", .readOnly = true},
      nativeProperty("Substream"),
      nativeProperty("RandnAlg"),
      nativeProperty("Antithetic"),
      nativeProperty("FullPrecision"),
      nativeProperty("State"),
      nativeReadOnly("Parameters"),
      {.name = kHandle, .readOnly = true, .hidden = true},
  };
  definition.methods = {
      {"rand", RandStream::randstreamRand},
      {"randn", RandStream::randn},
      {"randi", RandStream::randi},
      {"randperm", RandStream::randperm},
      {"reset", reset},
      {"advance", RandStream::advance},
      {"snapshot", RandStream::snapshotFcn},
      {"restore", restore},
      {"delete", [loaded](int nlhs, txArrayPtr*, int nrhs,
                          txArray const** prhs) { deleteObject(*loaded, nlhs, nrhs, prhs); }},
  };
  definition.staticMethods = {
      {"global", [loaded](int nlhs, txArrayPtr* plhs, int nrhs,
                          txArray const** prhs) { global(*loaded, nlhs, plhs, nrhs, prhs); }},
      {"default", setDefault},
      {"list", list},
      {"restore",
       [loaded](int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
         createRestored(*loaded, nlhs, plhs, nrhs, prhs);
       }},
  };
  definition.destroyer = [loaded](txArray& object) {
    if (txArray const* const handle = liveHandle(object)) dropStream(*loaded, *handle);
  };
  loaded->vm->classes().add(std::move(definition));
}

}  // namespace runtime
