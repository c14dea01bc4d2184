#pragma once

// The first check of every builtin: outputs, then inputs, with the host's standard errors.

#include "host/messages.h"

namespace errors {

inline void checkCounts(int nlhs, int maxOutputs, int nrhs, int minInputs, int maxInputs) {
  if (nlhs > maxOutputs) matrix::detail::error_maxlhs();
  if (nrhs > maxInputs) matrix::detail::error_maxrhs();
  if (nrhs < minInputs) matrix::detail::error_minrhs();
}

}  // namespace errors
