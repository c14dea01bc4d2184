#include <cstdint>
#include <memory>
#include <utility>

#include "builtins/stream_methods.h"
#include "errors/argument_counts.h"
#include "errors/keys.h"
#include "host/allocator.h"
#include "rng/mr_functions.h"
#include "rng/stream_handle.h"

namespace RandStream {
namespace {

bool hasClass(txArray const& array, txClassID classID) noexcept {
  return array.classID() == classID && !array.isEmpty();
}

}  // namespace

void create(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  namespace keys = TALVOR::RandStream::create;
  errors::checkCounts(nlhs, 1, nrhs, 5, 5);
  txArray const& numStreams = *prhs[1];
  txArray const& streamIndex = *prhs[2];
  txArray const& seed = *prhs[3];
  txArray const& params = *prhs[4];

  std::unique_ptr<char[], txFree_deleter> const type(txArrayToString(*prhs[0]));
  if (!type) errors::raise(keys::InvalidRNGType(), 1);
  if (!hasClass(numStreams, txClassUint64)) errors::raise(keys::BadNumStreams(), 2);
  if (!hasClass(streamIndex, txClassUint64)) errors::raise(keys::BadStreamIndex(), 3);
  if (!hasClass(seed, txClassUint32)) errors::raise(keys::BadSeed(), 4);
  if (!params.isEmpty() && params.classID() != txClassUint64) errors::raise(keys::BadParams(), 5);

  // The factories refuse parameters, and only look at how many there are.
  auto* const words =
      params.isEmpty() ? nullptr : const_cast<std::uint64_t*>(params.dataAs<std::uint64_t>());
  std::shared_ptr<randstream> stream(mrCreateRNGStream(
      type.get(), *numStreams.dataAs<std::uint64_t>(), *streamIndex.dataAs<std::uint64_t>() - 1,
      *seed.dataAs<std::uint32_t>(), words, params.numel()));
  plhs[0] = makeStreamHandle(std::move(stream));
}

void deletefcn(int nlhs, txArrayPtr* /*plhs*/, int nrhs, txArray const** prhs) {
  errors::checkCounts(nlhs, 0, nrhs, 1, 1);
  releaseStreamHandle(*prhs[0]);
}

}  // namespace RandStream
