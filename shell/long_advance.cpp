#include "shell/long_advance.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "embedded_host/object_system.h"
#include "language/fault.h"
#include "language/interrupt.h"
#include "rng/mr_functions.h"
#include "rng/randstream.h"
#include "shell/progress.h"

namespace shell {

namespace {

// Draws that take less than a blink are left to the stream itself.
constexpr std::uint64_t kLong = std::uint64_t{1} << 24;
constexpr std::uint64_t kBlock = std::uint64_t{1} << 20;

}  // namespace

bool advancedSlowly(int nrhs, txArray const** prhs) {
  if (nrhs != 2 || prhs[1]->classID() != txClassDouble || prhs[1]->isComplex() ||
      prhs[1]->isSparse() || prhs[1]->numel() != 1) {
    return false;
  }
  double const wanted = prhs[1]->scalarAsDouble();
  embedded_host::ClassPtr const found = embedded_host::classOf(*prhs[0]);
  if (!found || found->name != "RandStream" || !(wanted >= kLong) || wanted >= 0x1p53 ||
      wanted != std::floor(wanted)) {
    return false;
  }
  randstream& stream = *mrGetCPPRandStreamFromTxArray(prhs[0]);
  if (stream.canJump()) return false;
  std::unique_ptr<randstream> before = stream.clone();
  auto const n = static_cast<std::uint64_t>(wanted);
  Progress progress;
  for (std::uint64_t done = 0; done < n;) {
    std::uint64_t const length = std::min(kBlock, n - done);
    stream.advance(length);
    done += length;
    if (language::takeInterrupt()) {
      stream.rewind(std::move(before));
      language::raiseFault("interrupted",
                           fmt::format("Interrupted after {:.0f} % of the draws; the stream is "
                                       "back where it was.",
                                       100 * static_cast<double>(done) / wanted));
    }
    progress.draw(static_cast<double>(done) / wanted,
                  fmt::format("advance, drawing {:.3g} values", wanted));
  }
  return true;
}

}  // namespace shell
