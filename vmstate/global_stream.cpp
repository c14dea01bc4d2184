#include "vmstate/global_stream.h"

#include <array>
#include <cstdint>
#include <string>
#include <utility>

#include "errors/argument_counts.h"
#include "errors/keys.h"
#include "host/strings.h"
#include "rng/mr_functions.h"
#include "rng/stream_factory.h"
#include "rng/stream_handle.h"
#include "vmstate/random_settings.h"
#include "vmstate/vm_record.h"

namespace {

struct GlobalRandStreamState {
  std::shared_ptr<randstream> stream;
};
struct DefaultRandStreamState {
  std::shared_ptr<randstream> stream;
};
using GlobalRecord = VmRecord<GlobalRandStreamState>;
using DefaultRecord = VmRecord<DefaultRandStreamState>;

std::unique_ptr<randstream> makeFromSettings() {
  DefaultStreamSettings const chosen = readDefaultStreamSettings();
  return std::unique_ptr<randstream>(
      mrCreateRNGStream(utToAscii(chosen.algorithm).c_str(), 1, 0, chosen.seed, nullptr, 0));
}

template <class T>
txArrayPtr makeScalar(txClassID classID, T value) {
  constexpr std::array<std::uint64_t, 2> kOneByOne = {1, 1};
  txArrayPtr result = txCreateUninitialized(kOneByOne, classID);
  *result->dataAs<T>() = value;
  return result;
}

void getGlobalStream(int nlhs, txArrayPtr* plhs) {
  std::shared_ptr<randstream> const stream = acquireGlobalRandStream();
  if (nlhs > 1) plhs[1] = txCreateText(std::string_view(stream->generatorType()));
  if (nlhs > 2) plhs[2] = makeScalar<std::uint32_t>(txClassUint32, stream->seed());
  if (nlhs > 3) plhs[3] = makeScalar<std::uint64_t>(txClassUint64, stream->numStreams());
  if (nlhs > 4) plhs[4] = makeScalar<std::uint64_t>(txClassUint64, stream->streamIndex() + 1);
  // The handle comes last, since nobody would release it if another output failed.
  plhs[0] = makeStreamHandle(stream);
}

}  // namespace

std::shared_ptr<randstream> acquireGlobalRandStream() {
  GlobalRandStreamState& global = GlobalRecord::findOrInsert();
  if (!global.stream) {
    DefaultRandStreamState const* const fallback = DefaultRecord::find();
    global.stream = fallback && fallback->stream ? remade(*fallback->stream) : makeFromSettings();
  }
  return global.stream;
}

std::shared_ptr<randstream> findGlobalRandStream() {
  GlobalRandStreamState const* const global = GlobalRecord::find();
  return global ? global->stream : nullptr;
}

void setGlobalRandStream(std::shared_ptr<randstream> stream) {
  GlobalRecord::findOrInsert().stream = std::move(stream);
}

void getFactoryDefaultRandStreamType(int nlhs, txArrayPtr* plhs, int nrhs,
                                     txArray const** /*prhs*/) {
  errors::checkCounts(nlhs, 1, nrhs, 0, 0);
  plhs[0] = txCreateText(readFactoryDefaultAlgorithm());
}

void getsetGlobalRandStream(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  if (nrhs == 0 && nlhs <= 5) return getGlobalStream(nlhs, plhs);
  if (nrhs != 1 || nlhs != 0) errors::raise(TALVOR::RandStream::set::WrongNumberArgs());
  setGlobalRandStream(streamOfHandle(*prhs[0]));
}

void clearGlobalRandStream(int nlhs, txArrayPtr* /*plhs*/, int nrhs, txArray const** /*prhs*/) {
  errors::checkCounts(nlhs, 0, nrhs, 0, 0);
  if (GlobalRandStreamState* const global = GlobalRecord::find()) global->stream.reset();
}

void clearGlobalRandStreamIfMatches(int nlhs, txArrayPtr* /*plhs*/, int nrhs,
                                    txArray const** prhs) {
  errors::checkCounts(nlhs, 0, nrhs, 1, 1);
  try {
    std::shared_ptr<randstream> const stream = streamOfHandle(*prhs[0]);
    GlobalRandStreamState* const global = GlobalRecord::find();
    if (global && global->stream == stream) global->stream.reset();
  } catch (...) {
    // A stream object that holds no handle has nothing to clear.
  }
}

void setDefaultRandStream(int nlhs, txArrayPtr* /*plhs*/, int nrhs, txArray const** prhs) {
  errors::checkCounts(nlhs, 0, nrhs, 1, 1);
  if (prhs[0]->isEmpty()) return DefaultRecord::erase();
  std::shared_ptr<randstream> stream = streamOfObject(*prhs[0]);
  DefaultRecord::findOrInsert().stream = std::move(stream);
}
