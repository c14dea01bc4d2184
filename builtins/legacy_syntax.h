#pragma once

// The two-part syntax of rand and randn, which reads and sets the older generators:
//   rand(keyword), randn(keyword)                the generator's state, as a column
//   rand(keyword, value), randn(keyword, value)  seeds the generator or loads its state
// The keywords are 'seed', 'state' and, for rand, 'twister', exactly as they stand here.

#include "host/tx_array.h"

namespace builtins {

// Carries the call out if it is of this syntax; false leaves it to the grammar of sizes and types.
// Errors: "TALVOR:legacy_two_part:maxlhs" (an output of a form that sets), maxrhs (more than two
// arguments), rand:invalidSeed, rand:invalidState, rand:invalidTwisterState. After an error every
// generator is as before.
bool legacyRand(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);
// The same for randn. Errors: randn:invalidSeed, randn:invalidState.
bool legacyRandn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);

}  // namespace builtins
