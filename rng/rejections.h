#pragma once

// Counts rejections in a row: a generator in a degenerate state may be rejected forever.

#include <cstddef>

#include "errors/keys.h"
#include "tfl_rng/rejection.h"

class Rejections {
 public:
  // `rejected` candidates among which none was accepted, or with `accepted` others.
  void count(std::size_t rejected, bool accepted) {
    inARow_ = accepted ? 0 : inARow_ + rejected;
    if (inARow_ >= tfl_rng::kMaxRejections)
      errors::raise(component_TALVOR::catalog_RandStream::key_UnexpectedPluginError());
  }

 private:
  std::size_t inARow_ = 0;
};
