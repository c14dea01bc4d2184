// Snapshots of a stream object.

#include <memory>
#include <string>
#include <string_view>

#include "builtins/stream_methods.h"
#include "errors/argument_counts.h"
#include "errors/keys.h"
#include "rng/snapshot.h"
#include "rng/stream_handle.h"

namespace RandStream {
namespace {

// A character beyond ASCII is damage, and stays one as a question mark.
std::string textOf(txArray const& value) { return errors::toArgument(txArrayToU16String(value)); }

}  // namespace

void snapshotFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  errors::checkCounts(nlhs, 1, nrhs, 1, 1);
  plhs[0] = txCreateText(std::string_view(takeSnapshot(*streamOfObject(*prhs[0]))));
}

void restoreFcn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  errors::checkCounts(nlhs, 1, nrhs, 1, 2);
  if (nrhs == 2) {
    if (nlhs != 0) errors::raise(TALVOR::RandStream::set::WrongNumberArgs());
    std::shared_ptr<randstream> const stream = streamOfObject(*prhs[0]);
    return restoreSnapshot(*stream, textOf(*prhs[1]));
  }
  plhs[0] = makeStreamHandle(std::shared_ptr<randstream>(createFromSnapshot(textOf(*prhs[0]))));
}

}  // namespace RandStream
