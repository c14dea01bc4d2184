#include "vmstate/global_stream.h"

#include <array>
#include <cstdint>
#include <string>
#include <utility>

#include "errors/argument_counts.h"
#include "errors/keys.h"
#include "host/strings.h"
#include "rng/mr_functions.h"
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

// A shared_ptr of a raw stream deletes it when its own allocation fails.
std::shared_ptr<randstream> makeStream(char const* type, unsigned long numStreams,
                                       unsigned long streamIndex, unsigned int seed) {
  return std::shared_ptr<randstream>(
      mrCreateRNGStream(type, numStreams, streamIndex, seed, nullptr, 0));
}

std::shared_ptr<randstream> makeFromSettings() {
  DefaultStreamSettings const chosen = readDefaultStreamSettings();
  return makeStream(utToAscii(chosen.algorithm).c_str(), 1, 0, chosen.seed);
}

// A stream of its own that goes on from where `original` stands now.
std::shared_ptr<randstream> clone(randstream const& original) {
  std::shared_ptr<randstream> copy = makeStream(original.generatorType(), original.numStreams(),
                                                original.streamIndex(), original.seed());
  // One word a byte: room to spare, aligned for every state, and a length that no array can have
  // is refused by the allocation itself.
  unsigned long const length = original.getStateBufLen();
  auto const state = std::make_unique_for_overwrite<std::uint64_t[]>(length);
  original.getStateBuf(state.get(), length);
  copy->setStateBuf(state.get(), length);
  copy->setAntithetic(original.antithetic());
  copy->setFullPrecision(original.fullPrecision());
  copy->setRandnAlg(original.getRandnAlg());
  return copy;
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
    global.stream = fallback && fallback->stream ? clone(*fallback->stream) : makeFromSettings();
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
