#pragma once

// The bound on rejection loops: a state may be acceptable and yet so degenerate that a method never
// accepts a candidate. No honest state comes near the limit.

#include <exception>

#include "tfl_rng/export.h"

namespace tfl_rng {

inline constexpr int kMaxRejections = 1'000'000;

// Thrown after kMaxRejections rejections in a row; values drawn before stay written.
class TFL_EXPORT RejectionLimit : public std::exception {
 public:
  char const* what() const noexcept override { return "no candidate was accepted"; }
};

}  // namespace tfl_rng
