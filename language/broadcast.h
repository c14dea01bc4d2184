#pragma once

// Walking two arrays together with the extents of 1 repeated.

#include <cstdint>

#include "embedded_host/interrupt.h"
#include "language/values.h"

namespace language {

class Broadcast {
 public:
  // Raises when an extent differs and neither is 1; `what` names the operation in the text.
  Broadcast(txArray const& left, txArray const& right, char const* what);

  Shape const& result() const { return result_; }

  // out[i] = op(left[j], right[k]) over the whole result.
  template <class Out, class T, class Op>
  void run(Out* out, T const* left, T const* right, Op op) const {
    if (count_ == 0) return;
    std::uint64_t const inner = extents_[0];
    std::uint64_t const leftStep = leftSteps_[0];
    std::uint64_t const rightStep = rightSteps_[0];
    Shape at(extents_.size(), 0);
    for (;;) {
      embedded_host::inParts(inner, [=](std::uint64_t begin, std::uint64_t end) {
        for (std::uint64_t i = begin; i < end; ++i) {
          out[i] = op(left[i * leftStep], right[i * rightStep]);
        }
      });
      out += inner;
      std::size_t d = 1;
      for (; d < extents_.size(); ++d) {
        left += leftSteps_[d];
        right += rightSteps_[d];
        if (++at[d] < extents_[d]) break;
        left -= leftSteps_[d] * extents_[d];
        right -= rightSteps_[d] * extents_[d];
        at[d] = 0;
      }
      if (d >= extents_.size()) return;
    }
  }

 private:
  Shape result_;
  // The walk, with neighbouring dimensions that both sides store contiguously made one.
  Shape extents_;
  Shape leftSteps_;
  Shape rightSteps_;
  std::uint64_t count_ = 1;
};

}  // namespace language
