// reset and advance of a stream object.

#include <cstdint>
#include <memory>
#include <optional>

#include "builtins/scalars.h"
#include "builtins/stream_methods.h"
#include "errors/argument_counts.h"
#include "errors/explained.h"
#include "errors/keys.h"
#include "host/strings.h"
#include "host/tfl_rng.h"
#include "rng/randstream.h"
#include "rng/stream_handle.h"

namespace RandStream {

using namespace builtins;

namespace {

namespace reset_keys = TALVOR::RandStream::reset;

// The seed that the object keeps.
std::uint32_t ownSeed(txArray const& object) {
  txArrayPtr const seed = txGetProperty(object, "Seed");
  if (!seed || seed->classID() != txClassUint32 || seed->isEmpty())
    errors::raiseExplained(reset_keys::BadSeed(), "The object keeps none to go back to.", 1);
  return *seed->dataAs<std::uint32_t>();
}

// A new seed is for single streams only: streams of a set would no longer be distinct, and a legacy
// stream has several generators to seed.
void checkMayBeReseeded(txArray const& object) {
  txArrayPtr const type = txGetProperty(object, "Type");
  if (type && utToAscii(txArrayToU16String(*type)) == "legacy")
    errors::raise(reset_keys::LegacySeedNotAllowed(), 2);
  txArrayPtr const numStreams = txGetProperty(object, "NumStreams");
  if (numStreams && !numStreams->isEmpty() && numStreams->scalarAsDouble() > 1)
    errors::raise(reset_keys::SeedNotAllowed(), 2);
}

std::uint32_t parseSeed(txArray const& seed) {
  if (!isRealScalar(seed)) errors::raise(reset_keys::BadSeed(), 2);
  double const value = seed.scalarAsDouble();
  if (!(value >= 0 && value < 0x1p32)) errors::raise(reset_keys::BadSeed(), 2);
  return tfl_rng::toLow32(value);  // a fraction is dropped, not refused
}

}  // namespace

void resetFcn(int nlhs, txArrayPtr* /*plhs*/, int nrhs, txArray const** prhs) {
  errors::checkCounts(nlhs, 0, nrhs, 1, 2);
  txArray const& object = *prhs[0];
  std::shared_ptr<randstream> const stream = streamOfObject(object);
  if (nrhs == 1) return stream->reset(ownSeed(object));
  checkMayBeReseeded(object);
  stream->reset(parseSeed(*prhs[1]));
}

void advance(int nlhs, txArrayPtr* /*plhs*/, int nrhs, txArray const** prhs) {
  errors::checkCounts(nlhs, 0, nrhs, 2, 2);
  std::shared_ptr<randstream> const stream = streamOfObject(*prhs[0]);
  std::optional<std::uint64_t> const steps = toCount(*prhs[1]);
  if (!steps) errors::raise(TALVOR::RandStream::advance::BadNsteps(), 2);
  stream->advance(*steps);
}

}  // namespace RandStream
